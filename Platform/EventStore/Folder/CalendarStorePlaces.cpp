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

std::optional<std::filesystem::path> configurationHome(Foundation::Environment const& environment) {
    if (auto const home = absoluteVariable(environment, "XDG_CONFIG_HOME")) return home;
    if (auto const home = absoluteVariable(environment, "HOME")) return *home / ".config";
    return std::nullopt;
}

} // namespace

std::optional<CalendarStorePlaces> CalendarStorePlaces::of(Foundation::Environment const& environment,
                                                           FileManager const& files) {
    auto const configuration = configurationHome(environment);
    auto const data = files.applicationSupportDirectory();
    if (!configuration || !data) return std::nullopt;
    return CalendarStorePlaces{
        .configurationDirectory = *configuration / "quillora",
        .nativeCalendar = *data / "Quillora" / "Calendars" / "quillora-native-calendar",
    };
}

} // namespace Platform
