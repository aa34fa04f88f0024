#include "Foundation/Calendar.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Environment.h"
#include "Samples/SampleFolder.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fmt/format.h>
#include <optional>
#include <string>

namespace {

constexpr int failed = 1;
constexpr int wrongUse = 2;

struct Options {
    std::string folder;
    std::string day;
    std::string zone;
    std::int64_t events = 0;
    std::uint64_t seed = 1;
};

int refuse(std::string const& reason, int code) {
    fmt::print(stderr, "quillora-samples: {}\n", reason);
    return code;
}

Foundation::Date now() {
    auto const since1970 = std::chrono::system_clock::now().time_since_epoch();
    return {.secondsSince1970 = std::chrono::duration<double>(since1970).count()};
}

int run(Options const& options) {
    auto zone = Foundation::TimeZone::current(Foundation::Environment::ofProcess());
    if (!options.zone.empty()) {
        auto const named = Foundation::TimeZone::named(options.zone);
        if (!named) {
            return refuse(
                fmt::format("the time zone \"{}\" is not known here; nothing was written", options.zone),
                wrongUse);
        }
        zone = *named;
    }
    Foundation::Calendar const calendar(zone);
    auto moment = now();
    if (!options.day.empty()) {
        auto const given = Foundation::momentFromISO8601(options.day, calendar);
        if (!given) {
            return refuse(
                fmt::format("\"{}\" is no date, such as 2026-03-11; nothing was written", options.day),
                wrongUse);
        }
        moment = *given;
    }
    Samples::SampleRequest const request{
        .day = calendar.day(moment), .zone = zone, .archivedEvents = options.events, .seed = options.seed};
    auto const problem = Samples::writeSampleCalendars(request, options.folder);
    if (problem) return refuse(*problem, failed);
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    CLI::App application("Writes sample calendars, dated around a day, as folders of iCalendar files.\n"
                         "The same options give the same files.",
                         "quillora-samples");
    Options options;
    application
        .add_option("--out", options.folder, "the folder to write into; it is made when it is missing")
        ->required();
    application.add_option("--at", options.day,
                           "the day they are dated around, such as 2026-03-11; today if not given");
    application.add_option("--zone", options.zone, "the viewer's time zone, such as Europe/Madrid");
    application.add_option("--events", options.events, "so many more events, spread over 21 years")
        ->check(CLI::Range(std::int64_t{0}, std::int64_t{100'000'000}));
    application.add_option("--seed", options.seed, "another number, other events");
    try {
        application.parse(argumentCount, arguments);
    } catch (CLI::CallForHelp const& help) {
        return application.exit(help);
    } catch (CLI::ParseError const& error) {
        return refuse(std::string(error.what()) + "; --help explains the options", wrongUse);
    }
    return run(options);
}
