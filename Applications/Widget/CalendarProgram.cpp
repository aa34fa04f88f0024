#include "Applications/Widget/CalendarProgram.h"

#include "Applications/Widget/HarmlessText.h"
#include "Applications/Widget/Texts.h"

#include <string>
#include <utility>

namespace Widget {

void openCalendarProgram(Platform::Workspace& workspace,
                         std::function<void(Platform::DetailPage const&)> tell) {
    static constexpr char const* contentType = "text/calendar";
    if (!workspace.hasProgram(contentType)) {
        tell({.title = Texts::noCalendarProgram(),
              .lines = {Texts::noCalendarProgramFor(contentType), Texts::chooseProgram(contentType)},
              .links = {}});
        return;
    }
    workspace.startProgram(contentType, [tell = std::move(tell)](std::string const& failure) {
        if (!failure.empty()) {
            tell({.title = Texts::calendarProgramNotOpened(), .lines = {harmless(failure)}, .links = {}});
        }
    });
}

} // namespace Widget
