#include "Applications/Widget/CalendarProgram.h"
#include "Platform/Workspace/RecordingWorkspace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class CalendarProgramTests : public testing::Test {
protected:
    void open() {
        Widget::openCalendarProgram(workspace,
                                    [this](Platform::DetailPage const& page) { told.push_back(page); });
    }

    Platform::RecordingWorkspace workspace;
    std::vector<Platform::DetailPage> told;
};

TEST_F(CalendarProgramTests, theOneForCalendarsIsOpenedAndNothingIsTold) {
    workspace.programs = {{"text/html", "browser"}, {"text/calendar", "planner"}};
    open();
    EXPECT_EQ(workspace.opened, (std::vector<std::string>{"planner"}));
    EXPECT_EQ(told, (std::vector<Platform::DetailPage>{}));
}

TEST_F(CalendarProgramTests, thatThereIsNoneIsToldWithWhatHelps) {
    workspace.programs = {{"text/html", "browser"}};
    open();
    EXPECT_EQ(workspace.opened, std::vector<std::string>{});
    EXPECT_EQ(
        told,
        (std::vector<Platform::DetailPage>{
            {.title = "No calendar program",
             .lines =
                 {"No program on this computer is there for calendars (text/calendar), so none was opened.",
                  "Install one, or choose one in the desktop's settings for default applications or with "
                  "\"xdg-mime default NAME.desktop text/calendar\"."},
             .links = {}}}));
}

TEST_F(CalendarProgramTests, oneThatDoesNotStartIsToldWithTheCause) {
    workspace.programs = {{"text/calendar", "planner"}};
    workspace.failsWith("Failed to execute child process\n\x1B[2J");
    open();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].title, "The calendar program did not open");
    ASSERT_EQ(told[0].lines.size(), 1U);
    EXPECT_TRUE(told[0].lines[0].starts_with("Failed to execute child process")) << told[0].lines[0];
    EXPECT_FALSE(told[0].lines[0].contains('\x1B'));
}

} // namespace
