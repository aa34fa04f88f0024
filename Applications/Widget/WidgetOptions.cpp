#include "Applications/Widget/WidgetOptions.h"

#include "Applications/Options/OptionWords.h"
#include "Applications/Widget/Texts.h"
#include "Foundation/DateFormatting.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace Widget {

namespace {

using Options::OptionFault;
using Options::OptionForm;

EarlyEnd wrongUse(std::string text) {
    return {.exitCode = 2, .text = std::move(text)};
}

Options::OptionWords readWords(int count, char const* const* arguments) {
    std::array const forms{
        OptionForm{.names = "--family", .takesValue = true},
        OptionForm{.names = "--at", .takesValue = true},
        OptionForm{.names = "--scheme", .takesValue = true},
        OptionForm{.names = "--window", .takesValue = false},
        OptionForm{.names = "--desktop", .takesValue = false},
        OptionForm{.names = "-h,--help", .takesValue = false},
        OptionForm{.names = "--version", .takesValue = false},
        OptionForm{.names = "--print-first-frame", .takesValue = false},
        OptionForm{.names = "--quit-after-first-frame", .takesValue = false},
    };
    // A program may be started without even its own name.
    auto const* const first = arguments + std::min(count, 1);
    return Options::readOptionWords(forms, std::vector<std::string>(first, arguments + count));
}

std::string faultText(OptionFault const& fault) {
    switch (fault.kind) {
    case OptionFault::Kind::missingValue: return Texts::missingValue(fault.option);
    case OptionFault::Kind::unexpectedValue: return Texts::unexpectedValue(fault.option);
    case OptionFault::Kind::repeated: return Texts::repeatedOption(fault.option);
    }
    std::unreachable();
}

/// What the words ask for without a look at the values: an answer, or what is wrong with the words.
std::optional<EarlyEnd> endOf(Options::OptionWords const& words) {
    if (words.has("--help")) {
        return EarlyEnd{.exitCode = 0, .text = Texts::help()};
    }
    if (words.has("--version")) {
        return EarlyEnd{.exitCode = 0, .text = Texts::version()};
    }
    if (words.fault) {
        return wrongUse(faultText(*words.fault));
    }
    if (!words.others.empty()) {
        return wrongUse(Texts::unknownWord(words.others.front()));
    }
    if (words.has("--window") && words.has("--desktop")) {
        return wrongUse(Texts::placementsExclude());
    }
    return std::nullopt;
}

std::optional<Platform::WidgetFamily> offeredFamily(std::string_view name) {
    auto const family = Foundation::fromRawValue<Platform::WidgetFamily>(name);
    return family == Platform::WidgetFamily::systemExtraLarge ? std::nullopt : family;
}

} // namespace

std::expected<WidgetOptions, EarlyEnd> parseCommandLine(int count, char const* const* arguments,
                                                        Foundation::Calendar const& calendar) {
    auto const words = readWords(count, arguments);
    if (auto end = endOf(words)) {
        return std::unexpected(*std::move(end));
    }
    WidgetOptions options{
        .family = std::nullopt,
        .fixedMoment = std::nullopt,
        .colorScheme = std::nullopt,
        .placement =
            words.has("--window") ? Platform::WindowPlacement::window : Platform::WindowPlacement::desktop,
        .printsFirstFrame = words.has("--print-first-frame"),
        .quitsAfterFirstFrame = words.has("--quit-after-first-frame"),
    };
    if (auto const name = words.value("--family")) {
        options.family = offeredFamily(*name);
        if (!options.family) {
            return std::unexpected(wrongUse(Texts::unknownFamily(*name)));
        }
    }
    if (auto const text = words.value("--at")) {
        options.fixedMoment = Foundation::momentFromISO8601(*text, calendar);
        if (!options.fixedMoment) {
            return std::unexpected(wrongUse(Texts::unreadableMoment(*text)));
        }
    }
    auto const scheme = words.value("--scheme");
    if (scheme == "light") {
        options.colorScheme = Platform::ColorScheme::light;
    } else if (scheme == "dark") {
        options.colorScheme = Platform::ColorScheme::dark;
    } else if (scheme && scheme != "auto") {
        return std::unexpected(wrongUse(Texts::unknownScheme(*scheme)));
    }
    return options;
}

} // namespace Widget
