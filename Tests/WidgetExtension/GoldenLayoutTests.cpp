#include "Platform/Face/FaceLayout.h"
#include "Tests/WidgetExtension/FaceFixtures.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// Each layout is compared with Golden/<name>.txt. QUILLORA_UPDATE_GOLDEN=1 rewrites the files, for review.

namespace WidgetExtension {
namespace {

using Platform::ColorScheme;
using Platform::WidgetFamily;

std::vector<Meetings::MeetEntity> busyDay() {
    auto meetings = timedMeets(10);
    meetings[1].metName = "Ünïcode — 会議 🎉";
    meetings[1].metColor.hexValue = "5cc2c6";
    meetings[2].metName = "A \"quoted\" title\nof two lines";
    meetings[2].metDuration = 5400;
    meetings[3].metColor.hexValue = "#17E0000";
    meetings[4].metDuration = 7200;
    meetings.push_back(allDayMeet("Holiday"));
    meetings.push_back(allDayMeet("عطلة"));
    return meetings;
}

ScheduleWidgetView dark(ScheduleWidgetView view) {
    view.colorScheme = ColorScheme::dark;
    return view;
}

ScheduleWidgetView denied(ScheduleWidgetView view) {
    view.entry.hasAccessError = true;
    return view;
}

ScheduleWidgetView atNoon(ScheduleWidgetView view) {
    view.now = {.secondsSince1970 = wednesday + 12 * hour};
    view.entry.date = view.now;
    return view;
}

ScheduleWidgetView inArabic(ScheduleWidgetView view) {
    view.locale = {.identifier = "ar"};
    return view;
}

struct GoldenRow {
    char const* name;
    std::function<ScheduleWidgetView()> view;
    friend void PrintTo(GoldenRow const& row, std::ostream* out) { *out << row.name; }
};

class GoldenLayoutTests : public testing::TestWithParam<GoldenRow> {};

TEST_P(GoldenLayoutTests, isAsItWasReviewed) {
    auto const path = std::filesystem::path(QUILLORA_SOURCE_DIR "/Tests/WidgetExtension/Golden") /
                      (std::string(GetParam().name) + ".txt");
    auto const layout = Platform::dump(GetParam().view().layout());
    auto const* const update = std::getenv("QUILLORA_UPDATE_GOLDEN");
    if (update != nullptr && std::string_view(update) == "1") std::ofstream(path) << layout;

    std::ifstream file(path);
    ASSERT_TRUE(file) << path << " is missing; run with QUILLORA_UPDATE_GOLDEN=1 and review it.";
    std::string const golden((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_EQ(layout, golden);
}

INSTANTIATE_TEST_SUITE_P(
    everyFace, GoldenLayoutTests,
    testing::Values(
        GoldenRow{"small_busy", [] { return viewOf(busyDay(), WidgetFamily::systemSmall); }},
        GoldenRow{"small_busy_dark", [] { return dark(viewOf(busyDay(), WidgetFamily::systemSmall)); }},
        GoldenRow{"medium_busy", [] { return viewOf(busyDay(), WidgetFamily::systemMedium); }},
        GoldenRow{"medium_only_all_day",
                  [] { return viewOf({allDayMeet("Holiday")}, WidgetFamily::systemMedium); }},
        GoldenRow{"large_busy", [] { return viewOf(busyDay()); }},
        GoldenRow{"large_busy_dark_spanish",
                  [] { return dark(viewOf(busyDay(), WidgetFamily::systemLarge, "es")); }},
        GoldenRow{"large_today_at_noon", [] { return atNoon(viewOf(busyDay())); }},
        GoldenRow{"large_only_all_day", [] { return viewOf({allDayMeet("Holiday")}); }},
        GoldenRow{"large_empty_spanish", [] { return viewOf({}, WidgetFamily::systemLarge, "es"); }},
        GoldenRow{"large_denied", [] { return denied(viewOf({})); }},
        GoldenRow{"large_right_to_left", [] { return inArabic(viewOf(timedMeets(1))); }},
        GoldenRow{"extra_large_busy", [] { return viewOf(busyDay(), WidgetFamily::systemExtraLarge); }}),
    [](auto const& test) { return test.param.name; });

} // namespace
} // namespace WidgetExtension
