#include "Applications/Widget/WidgetStateStore.h"

#include "Applications/Widget/Texts.h"
#include "Foundation/JSON.h"
#include "Foundation/Text.h"

#include <cstdint>
#include <expected>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace Widget {

namespace {

namespace JSON = Foundation::JSON;
using Platform::WidgetFamily;
using Platform::WindowPlace;

constexpr std::int64_t currentVersion = 1;

std::optional<std::filesystem::path> absolutePath(std::optional<std::string> const& value) {
    if (!value || !std::filesystem::path(*value).is_absolute()) {
        return std::nullopt;
    }
    return *value;
}

bool isAbsence(std::error_code failure) {
    return failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory;
}

std::optional<std::int64_t> integerOf(JSON::Value const& object, std::string_view name) {
    auto const* const member = object.member(name);
    auto const number =
        member == nullptr ? std::unexpected(JSON::DecodeFailure::keyMissing) : JSON::integer(*member);
    return number ? std::optional(*number) : std::nullopt;
}

/// Displays count in 16 bits.
std::optional<int> coordinate(JSON::Value const& place, std::string_view name) {
    auto const value = integerOf(place, name);
    if (!value || *value < std::numeric_limits<std::int16_t>::min() ||
        *value > std::numeric_limits<std::int16_t>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(*value);
}

/// Absent for a name that is none of a family that is shown here.
std::optional<WidgetFamily> familyNamed(JSON::Value const& value) {
    auto const name = JSON::text(value);
    auto const family = name ? Foundation::fromRawValue<WidgetFamily>(*name) : std::nullopt;
    return family == WidgetFamily::systemExtraLarge ? std::nullopt : family;
}

std::optional<WindowPlace> placeIn(JSON::Value const& value) {
    auto const x = coordinate(value, "x");
    auto const y = coordinate(value, "y");
    return x && y ? std::optional(WindowPlace{.x = *x, .y = *y}) : std::nullopt;
}

/// Absent for a document that is damaged, or of another version.
std::optional<WidgetState> stateIn(std::string_view document) {
    auto const value = JSON::parse(document);
    if (!value || integerOf(*value, "version") != currentVersion) {
        return std::nullopt;
    }
    auto const* const family = value->member("family");
    auto const* const place = value->member("place");
    WidgetState const state{
        .family = family == nullptr ? std::nullopt : familyNamed(*family),
        .place = place == nullptr ? std::nullopt : placeIn(*place),
    };
    bool const isWhole =
        state.family.has_value() == (family != nullptr) && state.place.has_value() == (place != nullptr);
    return isWhole ? std::optional(state) : std::nullopt;
}

std::string documentOf(WidgetState const& state) {
    JSON::Object members{{"version", currentVersion}};
    if (state.family) {
        members.emplace_back("family", Foundation::rawValue(*state.family));
    }
    if (state.place) {
        members.emplace_back("place", JSON::Object{{"x", state.place->x}, {"y", state.place->y}});
    }
    // Names and whole numbers of our own: there is nothing in them that cannot be written.
    return JSON::serialize(JSON::Value(std::move(members))).value();
}

std::string shownPath(std::filesystem::path const& path) {
    return Foundation::Text::sanitizedUTF8(path.string());
}

} // namespace

std::optional<std::filesystem::path> stateFolder(Foundation::Environment const& environment) {
    if (auto const stateHome = absolutePath(environment.value("XDG_STATE_HOME"))) {
        return *stateHome / "quillora";
    }
    if (auto const home = absolutePath(environment.value("HOME"))) {
        return *home / ".local/state/quillora";
    }
    return std::nullopt;
}

WidgetStateStore::WidgetStateStore(std::filesystem::path const& folder,
                                   std::shared_ptr<Platform::FileManager const> files,
                                   Platform::Logger logger)
    : file(folder / "widget.json"),
      files(std::move(files)),
      logger(std::move(logger)) {}

WidgetState WidgetStateStore::load() const {
    auto const document = files->contents(file, Platform::largestPreferenceFile);
    if (!document) {
        if (!isAbsence(document.error())) {
            logger.error(Texts::stateNotRead(shownPath(file), document.error().message()));
        }
        return {};
    }
    auto const state = stateIn(*document);
    if (!state) {
        logger.error(Texts::stateNotTaken(shownPath(file)));
        return {};
    }
    return *state;
}

void WidgetStateStore::save(WidgetState const& state) const {
    auto failure = files->createDirectory(file.parent_path());
    if (!failure) {
        failure = files->writeAtomically(file, documentOf(state));
    }
    if (failure) {
        logger.error(Texts::stateNotSaved(shownPath(file), failure.message()));
    }
}

} // namespace Widget
