#include "Applications/Companion/DayRequest.h"

#include "Applications/Companion/OutputFile.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <utility>
#include <vector>

namespace Companion {

namespace {

constexpr double largestScale = 20;

std::optional<Platform::ColorScheme> requestedScheme(ArgumentValues const& values) {
    auto const name = values.option("--scheme");
    if (!name) return std::nullopt;
    return *name == "dark" ? Platform::ColorScheme::dark : Platform::ColorScheme::light;
}

double requestedScale(ArgumentValues const& values) {
    auto const text = values.option("--scale").value_or("2");
    double scale = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), scale);
    // Written so that NaN, which no comparison holds for, is refused.
    bool const isUsable =
        error == std::errc() && end == text.data() + text.size() && scale > 0 && scale <= largestScale;
    if (!isUsable) throw CommandError::wrongUse(Texts::badScale(text, largestScale));
    return scale;
}

// The later of two pictures in one file would be the only one.
void checkPicturesAreApart(ArgumentValues const& values) {
    std::vector<std::pair<std::string_view, std::filesystem::path>> named;
    for (auto const* option : pictureOptions) {
        auto const path = values.option(option);
        if (!path || path == standardOutput) continue;
        auto const file = absolutePath(*path);
        for (auto const& [other, otherFile] : named)
            if (isSameOutput(otherFile, file)) throw CommandError::wrongUse(Texts::sameOutput(other, option));
        named.emplace_back(option, file);
    }
}

void checkOutputs(ArgumentValues const& values, DayRequest const& request) {
    int onStandardOutput =
        (request.writesText ? 1 : 0) + (request.writesJSON ? 1 : 0) + (request.writesStatusBar ? 1 : 0);
    for (auto const* option : pictureOptions) {
        auto const path = values.option(option);
        if (!path) continue;
        if (goesToStandardOutput(values, option)) {
            ++onStandardOutput;
        } else if (auto const reason = whyNotAnOutputFile(absolutePath(*path))) {
            throw CommandError::wrongUse(*reason);
        } else if (isStandardOutput(absolutePath(*path))) {
            ++onStandardOutput;
        }
    }
    checkPicturesAreApart(values);
    if (onStandardOutput > 1) throw CommandError::wrongUse(Texts::oneOutputAtATime());
}

} // namespace

DayRequest dayRequest(Invocation const& invocation) {
    auto const& values = invocation.values;
    Foundation::Calendar const calendar(Foundation::TimeZone::current(invocation.environment));
    bool const writesJSON = values.has("--json");
    bool const writesStatusBar = values.has("--waybar");
    DayRequest request{
        .at = std::nullopt,
        .day = dayChoice(values),
        .family =
            *Foundation::fromRawValue<Platform::WidgetFamily>(values.option("--family").value_or("large")),
        .scheme = requestedScheme(values),
        .scale = requestedScale(values),
        .writesText = values.has("--text") || (!drawsPictures(values) && !writesJSON && !writesStatusBar),
        .writesJSON = writesJSON,
        .writesStatusBar = writesStatusBar,
    };
    if (auto const text = values.option("--at")) request.at = moment("--at", *text, calendar);
    checkOutputs(values, request);
    return request;
}

bool drawsPictures(ArgumentValues const& values) {
    return std::ranges::any_of(pictureOptions, [&](auto const* option) { return values.has(option); });
}

bool needsWholeDay(ArgumentValues const& values) {
    return drawsPictures(values) || values.has("--with-backend");
}

bool goesToStandardOutput(ArgumentValues const& values, std::string_view option) {
    return values.option(option) == standardOutput;
}

} // namespace Companion
