#include "Platform/EventStore/Folder/CalendarStorePlaces.h"

namespace Platform {

namespace {

std::optional<std::filesystem::path> absoluteVariable(Foundation::Environment const& environment,
                                                      std::string_view name) {
    auto const value = environment.value(name);
    if (!value) return std::nullopt;
    std::filesystem::path path(*value);
    if (!path.is_absolute()) return std::nullopt;
    return path;
}

// One of the folders of the XDG Base Directory specification.
std::optional<std::filesystem::path> baseDirectory(Foundation::Environment const& environment,
                                                   std::string_view variable, char const* inHome) {
    if (auto const directory = absoluteVariable(environment, variable)) return directory;
    if (auto const home = absoluteVariable(environment, "HOME")) return *home / inHome;
    return std::nullopt;
}

} // namespace

std::optional<CalendarStorePlaces> CalendarStorePlaces::of(Foundation::Environment const& environment,
                                                           FileManager const& files) {
    auto const configuration = baseDirectory(environment, "XDG_CONFIG_HOME", ".config");
    auto const cache = baseDirectory(environment, "XDG_CACHE_HOME", ".cache");
    auto const data = files.applicationSupportDirectory();
    if (!configuration || !data) return std::nullopt;
    return CalendarStorePlaces{
        .configurationDirectory = *configuration / "quillora",
        .nativeCalendar = *data / "Quillora" / "Calendars" / "quillora-native-calendar",
        .indexDirectory = cache ? std::optional(*cache / "quillora" / "calendars") : std::nullopt,
    };
}

} // namespace Platform
