#include "Applications/Companion/Commands.h"
#include "Applications/Companion/OccurrenceListing.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/TimeZone.h"

#include <fmt/format.h>

namespace Companion {

namespace JSON = Foundation::JSON;

namespace {

std::string dayText(std::chrono::local_days day) {
    std::chrono::year_month_day const date(day);
    return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

std::string jsonLine(ListedOccurrence const& occurrence) {
    bool const allDay = occurrence.days.has_value();
    JSON::Object object{{"version", 1}};
    object.emplace_back("start",
                        allDay ? dayText(occurrence.days->first) : Foundation::iso8601(occurrence.start));
    object.emplace_back("end", allDay ? dayText(occurrence.days->end) : Foundation::iso8601(occurrence.end));
    object.emplace_back("allDay", allDay);
    object.emplace_back("title", occurrence.title);
    object.emplace_back("uid", occurrence.uid);
    return plainJSON(object) + "\n";
}

std::vector<std::string> textRow(ListedOccurrence const& occurrence, Foundation::Calendar const& calendar) {
    if (occurrence.days)
        return {dayText(occurrence.days->first), dayText(occurrence.days->end), occurrence.title};
    auto const minutes = [&](Foundation::Date date) {
        return Foundation::logTimestamp(date, calendar).substr(0, 16);
    };
    return {minutes(occurrence.start), minutes(occurrence.end), occurrence.title};
}

Foundation::TimeZone viewerZone(Invocation const& invocation) {
    auto const name = invocation.values.option("--zone");
    if (!name) return Foundation::TimeZone::current(invocation.environment);
    auto zone = Foundation::TimeZone::named(*name);
    if (!zone) throw CommandError::wrongUse(Texts::unknownZone(*name));
    return *std::move(zone);
}

// Output goes out in pieces, so that a decade of a busy calendar needs no memory of its own.
class BufferedOutput {
public:
    explicit BufferedOutput(Console const& console) : console(console) {}

    void add(std::string const& text) {
        buffer += text;
        if (buffer.size() < pieceSize) return;
        flush();
    }

    void flush() {
        console.write(buffer);
        buffer.clear();
    }

private:
    static constexpr std::size_t pieceSize = 64 * 1024;
    Console const& console;
    std::string buffer;
};

ExitCode run(Invocation const& invocation) {
    Foundation::Calendar const calendar(viewerZone(invocation));
    auto const from = moment("--from", *invocation.values.option("--from"), calendar);
    auto const to = moment("--to", *invocation.values.option("--to"), calendar);
    if (to < from) throw CommandError::wrongUse(Texts::intervalIsBackwards());

    auto const path = absolutePath(invocation.values.arguments().front());
    auto const services = liveServices(invocation);
    auto const listing =
        listOccurrences(*services->files(), path, {.from = from, .to = to}, calendar.timeZone());
    for (auto const& problem : listing.problems)
        invocation.console.report(Texts::told(problem));
    if (!invocation.values.has("--json")) {
        std::vector<std::vector<std::string>> rows;
        for (auto const& occurrence : listing.occurrences)
            rows.push_back(textRow(occurrence, calendar));
        invocation.console.write(alignedColumns(rows));
        return ExitCode::done;
    }
    BufferedOutput output(invocation.console);
    for (auto const& occurrence : listing.occurrences)
        output.add(jsonLine(occurrence));
    output.flush();
    return ExitCode::done;
}

} // namespace

Command occurrencesCommand() {
    return {
        .path = "occurrences",
        .summary = Texts::text("occurrences-summary"),
        .description = Texts::text("occurrences-description"),
        .options = {{.name = "--from",
                     .valueName = "TIME",
                     .help = Texts::text("occurrences-option-from"),
                     .kind = ValueKind::moment,
                     .isRequired = true},
                    {.name = "--to",
                     .valueName = "TIME",
                     .help = Texts::text("occurrences-option-to"),
                     .kind = ValueKind::moment,
                     .isRequired = true},
                    {.name = "--zone",
                     .valueName = "ZONE",
                     .help = Texts::text("occurrences-option-zone"),
                     .kind = ValueKind::zone},
                    {.name = "--json", .help = Texts::text("occurrences-option-json")}},
        .arguments = {{.name = "FILE|DIR",
                       .help = Texts::text("occurrences-argument-file-dir"),
                       .kind = ValueKind::path}},
        .examples = {{"quillora occurrences team.ics --from 2026-03-01 --to 2026-04-01",
                      Texts::text("occurrences-example-1")},
                     {"quillora occurrences ~/.calendars --from 2026-03-11 --to 2026-03-12 --json",
                      Texts::text("occurrences-example-2")}},
        .run = run,
    };
}

} // namespace Companion
