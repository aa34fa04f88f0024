#include "Applications/Widget/WidgetOptions.h"

#include "Applications/Widget/Texts.h"
#include "Foundation/DateFormatting.h"

#include <CLI/CLI.hpp>

#include <array>
#include <string_view>
#include <utility>

namespace Widget {

namespace {

/// The words as they stand, before their values are looked at.
struct Words {
    std::optional<std::string> family;
    std::optional<std::string> moment;
    std::optional<std::string> scheme;
    bool isWindow = false;
    bool isDesktop = false;
    bool asksForHelp = false;
    bool asksForVersion = false;
    bool printsFirstFrame = false;
    bool quitsAfterFirstFrame = false;
};

EarlyEnd wrongUse(std::string text) {
    return {.exitCode = 2, .text = std::move(text)};
}

std::expected<Words, EarlyEnd> readWords(int count, char const* const* arguments) {
    Words words;
    CLI::App parser;
    parser.set_help_flag();
    parser.add_option("--family", words.family);
    parser.add_option("--at", words.moment);
    parser.add_option("--scheme", words.scheme);
    parser.add_flag("--window", words.isWindow);
    parser.add_flag("--desktop", words.isDesktop);
    parser.add_flag("-h,--help", words.asksForHelp);
    parser.add_flag("--version", words.asksForVersion);
    parser.add_flag("--print-first-frame", words.printsFirstFrame);
    parser.add_flag("--quit-after-first-frame", words.quitsAfterFirstFrame);
    // What is left over is told in our own words.
    parser.allow_extras();
    try {
        parser.parse(count, arguments);
    } catch (CLI::ParseError const& error) {
        return std::unexpected(wrongUse(Texts::wrongOption(error.what())));
    }
    if (words.asksForHelp) {
        return std::unexpected(EarlyEnd{.exitCode = 0, .text = Texts::help()});
    }
    if (words.asksForVersion) {
        return std::unexpected(EarlyEnd{.exitCode = 0, .text = Texts::version()});
    }
    if (auto const extras = parser.remaining(); !extras.empty()) {
        return std::unexpected(wrongUse(Texts::unknownWord(extras.front())));
    }
    return words;
}

std::optional<Platform::WidgetFamily> offeredFamily(std::string_view name) {
    auto const family = Foundation::fromRawValue<Platform::WidgetFamily>(name);
    return family == Platform::WidgetFamily::systemExtraLarge ? std::nullopt : family;
}

} // namespace

std::expected<WidgetOptions, EarlyEnd> parseCommandLine(int count, char const* const* arguments,
                                                        Foundation::Calendar const& calendar) {
    auto const read = readWords(count, arguments);
    if (!read) {
        return std::unexpected(read.error());
    }
    Words const& words = *read;
    WidgetOptions options{
        .family = std::nullopt,
        .fixedMoment = std::nullopt,
        .colorScheme = std::nullopt,
        .placement = words.isWindow ? Platform::WindowPlacement::window : Platform::WindowPlacement::desktop,
        .printsFirstFrame = words.printsFirstFrame,
        .quitsAfterFirstFrame = words.quitsAfterFirstFrame,
    };
    if (words.isWindow && words.isDesktop) {
        return std::unexpected(wrongUse(Texts::placementsExclude()));
    }
    if (words.family) {
        options.family = offeredFamily(*words.family);
        if (!options.family) {
            return std::unexpected(wrongUse(Texts::unknownFamily(*words.family)));
        }
    }
    if (words.moment) {
        options.fixedMoment = Foundation::momentFromISO8601(*words.moment, calendar);
        if (!options.fixedMoment) {
            return std::unexpected(wrongUse(Texts::unreadableMoment(*words.moment)));
        }
    }
    if (words.scheme == "light") {
        options.colorScheme = Platform::ColorScheme::light;
    } else if (words.scheme == "dark") {
        options.colorScheme = Platform::ColorScheme::dark;
    } else if (words.scheme && words.scheme != "auto") {
        return std::unexpected(wrongUse(Texts::unknownScheme(*words.scheme)));
    }
    return options;
}

} // namespace Widget
