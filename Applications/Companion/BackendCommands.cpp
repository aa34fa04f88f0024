#include "Applications/Companion/AlignedColumns.h"
#include "Applications/Companion/BackendRun.h"
#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/MeetJSON.h"
#include "Applications/Companion/MeetTyping.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Numbers.h"
#include "Foundation/Text.h"
#include "Meetings/MeetingsApplication.h"
#include "Meetings/Remote/RemoteEventRepositoryImpl.h"
#include "Meetings/StableIdentifier.h"
#include "Platform/Clock/Clock.h"
#include "Platform/Clock/RegionSettings.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace Companion {

using Meetings::EventResponseDTO;
using Meetings::MeetEntity;
using Events = std::vector<EventResponseDTO>;

namespace {

// One command on the backend's meets.
class BackendCommand {
public:
    explicit BackendCommand(Invocation const& invocation)
        : invocation(invocation),
          services(liveServices(invocation)),
          writesJSON(invocation.values.has("--json")),
          calendar(services->region()->currentCalendar()),
          run(invocation, *services, writesJSON ? OutputReader::program : OutputReader::person) {}

    ExitCode list() {
        // Events, since a meet does not tell of a repetition that it cannot hold.
        auto const events =
            run.require(run.meets()->fetchEvents(), Texts::meetsNotListed(), Texts::interruptedReading());
        if (writesJSON) {
            for (auto const& event : events)
                invocation.console.writeLine(documentOf(meetOf(event)));
        } else if (events.empty()) {
            invocation.console.writeLine(Texts::noMeets());
        } else {
            writeTable(events);
        }
        return ExitCode::done;
    }

    ExitCode add() {
        auto meet = typedMeet(invocation.values, services->clock()->now(), calendar);
        auto const notDone = Texts::backendMeetNotAdded(meet.metName);
        auto const stored = run.require(application().createMeet(std::move(meet)), notDone,
                                        Texts::interruptedWriting(notDone));
        confirm(stored, Texts::backendMeetAdded(stored.metName, stored.metOriginalIdentifier));
        return ExitCode::done;
    }

    ExitCode edit() {
        if (!describesAMeet(invocation.values)) throw CommandError::wrongUse(Texts::nothingToEditInMeet());
        auto const notDone = Texts::backendMeetNotChanged(typedId());
        auto const event = eventCalled(notDone);
        auto const unknown = unknownRepetition(event);
        // What is sent replaces the whole event, and a meet holds nothing of a repetition that it does not
        // know.
        if (unknown && !invocation.values.has("--repeat"))
            throw CommandError::failed(Texts::repetitionWouldBeLost(notDone, *unknown));
        auto meet = changedMeet(invocation.values, meetOf(event), calendar);
        auto const stored =
            run.require(application().editMeet(std::move(meet)), notDone, Texts::interruptedWriting(notDone));
        confirm(stored, Texts::backendMeetChanged(stored.metName, stored.metOriginalIdentifier));
        return ExitCode::done;
    }

    ExitCode remove() {
        bool const isAsked = !invocation.values.has("--yes");
        if (isAsked && !invocation.console.canAsk()) throw CommandError::wrongUse(Texts::deletingNeedsYes());
        auto const notDone = Texts::backendMeetNotDeleted(typedId());
        auto const meet = meetOf(eventCalled(notDone));
        if (isAsked) {
            auto const answer = invocation.console.ask(Texts::deleteMeet(meet.metName, startText(meet)));
            if (!answer.value_or(false)) throw CommandError::failed(Texts::meetKept(meet.metName));
        }
        run.require(application().deleteMeet(meet), notDone, Texts::interruptedWriting(notDone));
        confirm(meet, Texts::backendMeetDeleted(meet.metName, meet.metOriginalIdentifier));
        return ExitCode::done;
    }

private:
    [[nodiscard]] Meetings::MeetingsApplication application() const { return {run.meets(), calendar}; }

    [[nodiscard]] std::string const& typedId() const { return invocation.values.arguments().front(); }

    [[nodiscard]] MeetEntity meetOf(EventResponseDTO const& event) const {
        return event.toMeetEntity(*services->appearance());
    }

    // The event that a person means: by the backend's identifier or its beginning, or by that of its metId.
    EventResponseDTO eventCalled(std::string const& notDone) {
        auto const events =
            run.require(run.meets()->fetchEvents(), notDone, Texts::interruptedBeforeAChange());
        auto const& id = typedId();
        auto const named = std::ranges::find(events, id, &EventResponseDTO::evtId);
        if (named != events.end()) return *named;

        auto const begins = [&](EventResponseDTO const& event) {
            auto const metId = Meetings::StableIdentifier::uuid(event.evtId).uuidString();
            return !id.empty() && (event.evtId.starts_with(id) || metId.starts_with(upperASCII(id)));
        };
        auto const found = std::ranges::find_if(events, begins);
        if (found == events.end()) {
            throw CommandError::refused(Texts::withReason(notDone, Texts::noSuchBackendMeet()),
                                        std::string(Meetings::RemoteEventRepositoryImpl::errorNotFound));
        }
        if (std::find_if(found + 1, events.end(), begins) != events.end())
            throw CommandError::wrongUse(Texts::severalBackendMeets(id));
        return *found;
    }

    static std::string upperASCII(std::string text) {
        for (char& letter : text)
            if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
        return text;
    }

    [[nodiscard]] std::string startText(MeetEntity const& meet) const {
        // At the ends of time a service's instant can lie in a year that these clocks do not have.
        bool const isOnTheClocks = calendar.dateByAddingMinutes(0, meet.metDate).has_value();
        if (!isOnTheClocks) return Foundation::iso8601(meet.metDate);
        return Foundation::logTimestamp(meet.metDate, calendar).substr(0, 16);
    }

    [[nodiscard]] std::vector<std::string> rowOf(EventResponseDTO const& event) const {
        constexpr std::size_t longestText = 200; // One that is longer is whole with --json.
        auto const meet = meetOf(event);
        auto const unknown = unknownRepetition(event);
        auto const minutes = Foundation::truncatedInteger(meet.metDuration / 60);
        return {startText(meet), Texts::minutesLong(minutes),
                Foundation::Text::truncated(meet.metName, longestText),
                unknown ? Texts::repetitionIsUnknown(*unknown) : repetitionText(meet),
                Foundation::Text::truncated(meet.metOriginalIdentifier, longestText)};
    }

    // A row at a time: a service may hold more meets than should stand in memory twice.
    void writeTable(Events const& events) const {
        constexpr std::size_t pageSize = std::size_t{64} << 10;
        AlignedColumns columns;
        for (auto const& event : events)
            columns.measure(rowOf(event));
        std::string page;
        for (auto const& event : events) {
            page += columns.line(rowOf(event)) + "\n";
            if (page.size() >= pageSize) invocation.console.write(std::exchange(page, {}));
        }
        invocation.console.write(page);
    }

    // Each line is a document of its own.
    [[nodiscard]] static std::string documentOf(MeetEntity const& meet) {
        auto document = meetJSON(meet);
        document.emplace(document.begin(), "version", 1);
        return plainJSON(std::move(document));
    }

    void confirm(MeetEntity const& meet, std::string const& whatWasDone) const {
        if (writesJSON) {
            invocation.console.confirm(documentOf(meet) + "\n", whatWasDone);
        } else {
            invocation.console.confirmLine(whatWasDone);
        }
    }

    Invocation const& invocation;
    std::unique_ptr<Composition::LiveServices> services;
    bool writesJSON;
    Foundation::Calendar calendar;
    BackendRun run;
};

std::vector<CommandOption> withConnection(std::vector<CommandOption> options) {
    options.push_back({.name = "--url", .valueName = "URL", .help = Texts::text("backend-option-url")});
    options.push_back({.name = "--token-fd",
                       .valueName = "N",
                       .help = Texts::text("backend-option-token-fd"),
                       .kind = ValueKind::number});
    options.push_back({.name = "--json", .help = Texts::text("backend-option-json")});
    return options;
}

CommandArgument idArgument() {
    return {.name = "ID", .help = Texts::text("backend-option-id")};
}

} // namespace

Command backendListCommand() {
    return {
        .path = "backend list",
        .summary = Texts::text("backend-list-summary"),
        .description = Texts::text("backend-list-description"),
        .options = withConnection({}),
        .examples = {{"quillora backend list", Texts::text("backend-list-example-1")},
                     {"quillora backend list --url http://127.0.0.1:8080 --token-fd 0 --json < token",
                      Texts::text("backend-list-example-2")}},
        .run = [](Invocation const& invocation) { return BackendCommand(invocation).list(); },
    };
}

Command backendAddCommand() {
    return {
        .path = "backend add",
        .summary = Texts::text("backend-add-summary"),
        .description = Texts::text("backend-add-description"),
        .options = withConnection(backendMeetOptions(MeetAge::isNew)),
        .examples = {{"quillora backend add --name \"Stand-up\" --start 2026-03-11T09:00 --duration 15m",
                      Texts::text("backend-add-example-1")},
                     {"quillora backend add --name A --start 09:00 --repeat weekly --weekdays mon",
                      Texts::text("backend-add-example-2")}},
        .run = [](Invocation const& invocation) { return BackendCommand(invocation).add(); },
    };
}

Command backendEditCommand() {
    return {
        .path = "backend edit",
        .summary = Texts::text("backend-edit-summary"),
        .description = Texts::text("backend-edit-description"),
        .options = withConnection(backendMeetOptions(MeetAge::exists)),
        .arguments = {idArgument()},
        .examples = {{"quillora backend edit e17 --name \"Stand-up, shorter\" --duration 10m",
                      Texts::text("backend-edit-example-1")}},
        .run = [](Invocation const& invocation) { return BackendCommand(invocation).edit(); },
    };
}

Command backendDeleteCommand() {
    auto options = withConnection({{.name = "--yes", .help = Texts::text("backend-delete-option-yes")}});
    return {
        .path = "backend delete",
        .summary = Texts::text("backend-delete-summary"),
        .description = Texts::text("backend-delete-description"),
        .options = std::move(options),
        .arguments = {idArgument()},
        .examples = {{"quillora backend delete e17", Texts::text("backend-delete-example-1")},
                     {"quillora backend delete e17 --yes", Texts::text("backend-delete-example-2")}},
        .run = [](Invocation const& invocation) { return BackendCommand(invocation).remove(); },
    };
}

} // namespace Companion
