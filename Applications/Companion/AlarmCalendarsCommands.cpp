#include "Applications/Companion/AlarmTexts.h"
#include "Applications/Companion/CalendarAccounts.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Meetings/Alarms/AlarmEnabledCalendarsStore.h"

#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;
namespace CalendarsStore = Meetings::AlarmEnabledCalendarsStore;

namespace {

struct ListedCalendar {
    std::string identifier;
    std::optional<std::string> title; ///< Absent for one that is announced but no longer there.
    bool isAnnounced;
};

// Every calendar in the store's order, then those that are announced and gone.
std::vector<ListedCalendar> listedCalendars(Composition::LiveServices& services) {
    auto announced = CalendarsStore::load(*requiredDefaults(services));
    std::vector<ListedCalendar> calendars;
    for (auto const& account : availableAccounts(services)) {
        for (auto const& calendar : account.eacCalendars) {
            bool const isAnnounced = announced.erase(calendar.eciId) > 0;
            calendars.push_back(
                {.identifier = calendar.eciId, .title = calendar.eciTitle, .isAnnounced = isAnnounced});
        }
    }
    for (auto const& identifier : announced)
        calendars.push_back({.identifier = identifier, .title = std::nullopt, .isAnnounced = true});
    return calendars;
}

JSON::Value calendarsValue(std::vector<ListedCalendar> const& calendars) {
    JSON::Array list;
    for (auto const& [identifier, title, isAnnounced] : calendars) {
        JSON::Object calendar{{"eciId", identifier}};
        if (title) calendar.emplace_back("eciTitle", *title);
        calendar.emplace_back("isAnnounced", isAnnounced);
        list.emplace_back(std::move(calendar));
    }
    return JSON::Object{{"version", 1}, {"calendars", std::move(list)}};
}

ExitCode list(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const calendars = listedCalendars(*services);
    if (invocation.values.has("--json")) {
        invocation.console.writeLine(plainJSON(calendarsValue(calendars)));
        return ExitCode::done;
    }
    if (calendars.empty()) {
        invocation.console.writeLine(Texts::noCalendars());
        return ExitCode::done;
    }
    std::vector<std::vector<std::string>> rows;
    for (auto const& [identifier, title, isAnnounced] : calendars)
        rows.push_back(
            {identifier, title.value_or(Texts::goneCalendar()), isAnnounced ? Texts::announcedMark() : ""});
    invocation.console.write(alignedColumns(rows));
    return ExitCode::done;
}

ExitCode add(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const accounts = availableAccounts(*services);
    auto const& identifiers = invocation.values.arguments();
    std::string said;
    for (auto const& identifier : identifiers) {
        auto const title = calendarTitle(accounts, identifier);
        if (!title) throw CommandError::wrongUse(Texts::unknownAnnouncedCalendar(identifier));
        said += Texts::calendarAnnounced(*title) + "\n";
    }
    requireSaved(
        CalendarsStore::insert({identifiers.begin(), identifiers.end()}, *requiredDefaults(*services)));
    invocation.console.confirm(said, said);
    return ExitCode::done;
}

ExitCode remove(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const defaults = requiredDefaults(*services);
    auto const accounts = availableAccounts(*services);
    auto const announced = CalendarsStore::load(*defaults);
    auto const& identifiers = invocation.values.arguments();
    std::string said;
    for (auto const& identifier : identifiers) {
        // A calendar that is gone may still be on the list; it can be taken off like any other.
        auto const title = calendarTitle(accounts, identifier);
        if (!title && !announced.contains(identifier))
            throw CommandError::wrongUse(Texts::unknownAnnouncedCalendar(identifier));
        said += Texts::calendarNoLongerAnnounced(title.value_or(identifier)) + "\n";
    }
    requireSaved(CalendarsStore::remove({identifiers.begin(), identifiers.end()}, *defaults));
    invocation.console.confirm(said, said);
    return ExitCode::done;
}

CommandArgument calendarIdentifiers() {
    return {.name = "ID",
            .help = Texts::text("alarm-calendars-argument-id"),
            .kind = ValueKind::calendar,
            .count = CommandArgument::Count::oneOrMore};
}

} // namespace

Command alarmCalendarsGroup() {
    return {
        .path = "alarm calendars",
        .summary = Texts::text("alarm-calendars-summary"),
        .description = Texts::text("alarm-calendars-description"),
    };
}

Command alarmCalendarsListCommand() {
    return {
        .path = "alarm calendars list",
        .summary = Texts::text("alarm-calendars-list-summary"),
        .description = Texts::text("alarm-calendars-list-description"),
        .options = {{.name = "--json", .help = Texts::text("option-json")}},
        .examples = {{"quillora alarm calendars list", Texts::text("alarm-calendars-list-example-1")}},
        .run = list,
    };
}

Command alarmCalendarsAddCommand() {
    return {
        .path = "alarm calendars add",
        .summary = Texts::text("alarm-calendars-add-summary"),
        .description = Texts::text("alarm-calendars-add-description"),
        .arguments = {calendarIdentifiers()},
        .examples = {{"quillora alarm calendars add k3fa/work",
                      Texts::text("alarm-calendars-add-example-1")}},
        .run = add,
    };
}

Command alarmCalendarsRemoveCommand() {
    return {
        .path = "alarm calendars remove",
        .summary = Texts::text("alarm-calendars-remove-summary"),
        .description = Texts::text("alarm-calendars-remove-description"),
        .arguments = {calendarIdentifiers()},
        .examples = {{"quillora alarm calendars remove k3fa/work",
                      Texts::text("alarm-calendars-remove-example-1")}},
        .run = remove,
    };
}

} // namespace Companion
