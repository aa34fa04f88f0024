#include "Applications/Companion/CalendarAccounts.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Meetings/HiddenCalendarsStore.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <cstdint>
#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;

namespace {

using Accounts = std::vector<Meetings::EventKitAccountCalendarsEntity>;

JSON::Value accountsValue(Accounts const& accounts, std::set<std::string> const& hidden) {
    JSON::Array list;
    for (auto const& account : accounts) {
        JSON::Array calendars;
        for (auto const& calendar : account.eacCalendars) {
            calendars.emplace_back(JSON::Object{{"eciId", calendar.eciId},
                                                {"eciTitle", calendar.eciTitle},
                                                {"eciColorHex", calendar.eciColorHex},
                                                {"isHidden", hidden.contains(calendar.eciId)}});
        }
        list.emplace_back(JSON::Object{{"eacId", account.eacId},
                                       {"eacAccountTitle", account.eacAccountTitle},
                                       {"eacAccountType", account.eacAccountType},
                                       {"eacCalendars", std::move(calendars)}});
    }
    return JSON::Object{{"version", 1}, {"accounts", std::move(list)}};
}

// What stands above an account's calendars; as a list of accounts, with its identifier.
std::vector<std::string> headingOf(Meetings::EventKitAccountCalendarsEntity const& account,
                                   bool listsAccounts) {
    std::vector<std::string> heading = {account.eacAccountTitle, "(" + account.eacAccountType + ")"};
    if (listsAccounts) heading.insert(heading.begin(), account.eacId);
    return heading;
}

std::string accountsText(Accounts const& accounts, std::set<std::string> const& hidden, bool listsAccounts) {
    std::string page;
    for (auto const& account : accounts) {
        page += alignedColumns({headingOf(account, listsAccounts)});
        std::vector<std::vector<std::string>> rows;
        for (auto const& calendar : account.eacCalendars) {
            rows.push_back({calendar.eciId, calendar.eciTitle, calendar.eciColorHex,
                            hidden.contains(calendar.eciId) ? Texts::hiddenMark() : ""});
        }
        if (rows.empty() && listsAccounts) rows.push_back({Texts::accountWithoutCalendars()});
        page += alignedColumns(rows, "  ");
    }
    return page;
}

ExitCode list(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const accounts = availableAccounts(*services);
    auto const hidden = Meetings::HiddenCalendarsStore::load(*services->files());
    if (invocation.values.has("--json")) {
        invocation.console.writeLine(plainJSON(accountsValue(accounts, hidden)));
        return ExitCode::done;
    }
    auto const page = accountsText(accounts, hidden, invocation.values.has("--accounts"));
    if (page.empty()) {
        invocation.console.writeLine(Texts::noCalendars());
    } else {
        invocation.console.write(page);
    }
    return ExitCode::done;
}

void saveHidden(Composition::LiveServices& services, std::set<std::string> const& hidden) {
    Platform::WriteWitness const files(services.files());
    Meetings::HiddenCalendarsStore::save(files, *services.notifications(), hidden);
    // The store never fails aloud, so a person's own command looks whether the choice was kept.
    if (Meetings::HiddenCalendarsStore::load(files) != hidden)
        throw CommandError::failed(Texts::hiddenCalendarsNotSaved(whyNotKept(files)));
    services.widgetCenter()->reloadAllTimelines();
}

enum class Visibility : std::uint8_t { hidden, shown };

// What is said of the calendars that the person names, with the choice changed for each of them.
std::string change(std::set<std::string>& hidden, Visibility visibility, Accounts const& accounts,
                   std::vector<std::string> const& identifiers) {
    auto const hiddenBefore = hidden;
    std::string said;
    for (auto const& identifier : identifiers) {
        auto const title = calendarTitle(accounts, identifier);
        // A calendar that is gone may still be on the list; it can be taken off like any other.
        bool const isListed = visibility == Visibility::shown && hiddenBefore.contains(identifier);
        if (!title && !isListed) throw CommandError::wrongUse(Texts::unknownCalendar(identifier));
        auto const name = title.value_or(identifier);
        if (visibility == Visibility::hidden) {
            hidden.insert(identifier);
            said += Texts::calendarHidden(name) + "\n";
        } else {
            hidden.erase(identifier);
            said += Texts::calendarShown(name) + "\n";
        }
    }
    return said;
}

template <Visibility visibility>
ExitCode setVisibility(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const accounts = availableAccounts(*services);
    auto hidden = Meetings::HiddenCalendarsStore::load(*services->files());
    auto const said = change(hidden, visibility, accounts, invocation.values.arguments());
    saveHidden(*services, hidden);
    invocation.console.confirm(said, said);
    return ExitCode::done;
}

std::vector<CommandArgument> calendarArguments() {
    return {{.name = "ID",
             .help = Texts::text("calendars-argument-id"),
             .kind = ValueKind::calendar,
             .count = CommandArgument::Count::oneOrMore}};
}

} // namespace

Command calendarsGroup() {
    return {
        .path = "calendars",
        .summary = Texts::text("calendars-summary"),
        .description = Texts::text("calendars-description"),
    };
}

Command calendarsListCommand() {
    return {
        .path = "calendars list",
        .summary = Texts::text("calendars-list-summary"),
        .description = Texts::text("calendars-list-description"),
        .options = {{.name = "--accounts", .help = Texts::text("calendars-list-option-accounts")},
                    {.name = "--json", .help = Texts::text("option-json")}},
        .examples = {{"quillora calendars list", Texts::text("calendars-list-example-1")},
                     {"quillora calendars list --accounts", Texts::text("calendars-list-example-2")}},
        .run = list,
    };
}

Command calendarsHideCommand() {
    return {
        .path = "calendars hide",
        .summary = Texts::text("calendars-hide-summary"),
        .description = Texts::text("calendars-hide-description"),
        .arguments = calendarArguments(),
        .examples = {{"quillora calendars hide k3fa/holidays", Texts::text("calendars-hide-example-1")}},
        .run = setVisibility<Visibility::hidden>,
    };
}

Command calendarsShowCommand() {
    return {
        .path = "calendars show",
        .summary = Texts::text("calendars-show-summary"),
        .description = Texts::text("calendars-show-description"),
        .arguments = calendarArguments(),
        .examples = {{"quillora calendars show k3fa/holidays", Texts::text("calendars-show-example-1")}},
        .run = setVisibility<Visibility::shown>,
    };
}

} // namespace Companion
