#include "Applications/Alarms/DesktopBell.h"

#include "Applications/Alarms/Texts.h"
#include "Foundation/WebLinks.h"
#include "Platform/WidgetHost/WidgetBus.h"

#include <exception>
#include <utility>

namespace Alarms {

namespace {

constexpr char const* openAction = "open";
constexpr char const* snoozeAction = "snooze";
constexpr char const* dismissAction = "dismiss";

Foundation::Task<void> announce(std::shared_ptr<Composition::AlarmAnnouncer const> announcer,
                                std::string name, std::function<void(std::string const&)> report) {
    try {
        auto const outcome = announcer->announce(name);
        if (outcome) co_return;
        report(Texts::notHeard(outcome.error()));
        auto const chime = announcer->play(Meetings::MeetAlarmModeEnum::hero);
        if (!chime && chime.error() != outcome.error()) report(Texts::notHeard(chime.error()));
    } catch (std::exception const& error) {
        report(error.what());
    }
}

} // namespace

std::optional<Foundation::URL> linkOf(Meetings::MeetEntity const& meet) {
    if (meet.metUrl && Foundation::isWebLink(*meet.metUrl)) return meet.metUrl;
    auto place = Foundation::URL::fromText(meet.metLocation.value_or(""));
    if (place && Foundation::isWebLink(*place)) return place;
    return std::nullopt;
}

DesktopBell::DesktopBell(DesktopBellParts parts, DesktopBellAnswers answers)
    : parts(std::move(parts)),
      answers(std::move(answers)) {
    this->parts.notifications.onResponse(
        [this](std::string const& identifier, std::string const& action) { answered(identifier, action); });
}

DesktopBell::~DesktopBell() {
    parts.notifications.onResponse(nullptr);
}

void DesktopBell::ring(Alarm const& alarm) {
    std::string body;
    for (auto const& line : parts.details(alarm.meet))
        body += (body.empty() ? "" : "\n") + line;
    auto const& name = alarm.meet.metName;
    parts.notifications.add({.identifier = alarm.identifier,
                             .title = name.empty() ? alarm.meet.metCalendarName : name,
                             .body = std::move(body),
                             .actions = {{.identifier = openAction, .title = Texts::open()},
                                         {.identifier = snoozeAction, .title = Texts::snooze()},
                                         {.identifier = dismissAction, .title = Texts::dismiss()}}},
                            [report = parts.report](std::expected<void, std::string> const& outcome) {
                                if (!outcome) report(Texts::notShown(outcome.error()));
                            });
    parts.executor.start(announce(parts.announcer, name, parts.report));
}

void DesktopBell::answered(std::string const& identifier, std::string const& action) {
    if (action == snoozeAction) {
        answers.snooze(identifier);
    } else if (action == openAction) {
        if (auto const alarm = answers.alarm(identifier)) open(alarm->meet);
    }
}

void DesktopBell::open(Meetings::MeetEntity const& meet) {
    auto const done = [report = parts.report](std::string const& failure) {
        if (!failure.empty()) report(Texts::notOpened(failure));
    };
    if (auto const link = linkOf(meet)) {
        parts.workspace.open(*link, done);
        return;
    }
    // Without a link there is the day to show.
    parts.workspace.activateApplication(Platform::WidgetBus::applicationIdentifier, done);
}

} // namespace Alarms
