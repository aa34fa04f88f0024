#pragma once

#include "Foundation/Date.h"
#include "Foundation/Environment.h"
#include "Foundation/Task.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace Platform {
class Appearance;
class CalendarStoreConfiguration;
class Clock;
class ColorProvider;
class ConsentPrompt;
class ConsentRecord;
class EKEventStore;
class FileManager;
class FolderEventStore;
class LogSink;
class NotificationCenter;
class RegionSettings;
class TextProvider;
class UserDefaults;
class WidgetCenter;
struct CalendarStorePlaces;
} // namespace Platform

namespace Meetings {
class EventKitStoring;
}

namespace WidgetExtension {
struct ScheduleWidgetServices;
}

/// The composition roots' common part: the one place that names the live implementations.
namespace Composition {

/// What becomes of a folder that the programs share and that is not there yet.
enum class SharedFolder : std::uint8_t { isMade, isLeftMissing };

/// What a program decides for itself.
struct LiveServicesOptions {
    /// The moment at which the program's clock stands still; absent for the system's clock.
    std::optional<Foundation::Date> fixedMoment = std::nullopt;
    /// Asks for access to the calendars; without one it is not asked for and stays undetermined.
    std::shared_ptr<Platform::ConsentPrompt> consentPrompt = nullptr;
    /// Where log records go; absent for the system's journal.
    std::shared_ptr<Platform::LogSink> logSink = nullptr;
    /// For a program that stays: the calendars are answered from at once and looked at afterwards, and this
    /// is called, on any thread, when another answer would come of that. Absent for one that asks once.
    std::function<void()> calendarsDiffer = nullptr;
    /// For a program that asks once and is in a hurry: see Platform::FolderEventStoreParts::onLookDue.
    std::function<void()> calendarLookDue = nullptr;
    /// For a program that only looks.
    SharedFolder missingSharedFolder = SharedFolder::isMade;
};

/// The log category of the calendar store: what it could not read, and why.
inline constexpr std::string_view calendarStoreLogCategory = "FolderEventStore";

/// The log category of damaged preference files.
inline constexpr std::string_view preferencesLogCategory = "PreferenceGuard";

/// Every live part of a Quillora program. Each is made once, on first use, so that a program pays only for
/// what it touches: no bus is contacted, no file opened and no bundle looked up before that. May be asked
/// from any thread; the parts themselves say which threads they allow.
class LiveServices final {
public:
    explicit LiveServices(Foundation::Environment environment, LiveServicesOptions options = {});
    ~LiveServices();

    LiveServices(LiveServices const&) = delete;
    LiveServices& operator=(LiveServices const&) = delete;

    [[nodiscard]] Foundation::Environment const& environment() const;

    std::shared_ptr<Platform::Clock const> clock();
    std::shared_ptr<Platform::RegionSettings const> region();
    std::shared_ptr<Platform::FileManager const> files();
    std::shared_ptr<Platform::LogSink> logSink();
    std::shared_ptr<Platform::NotificationCenter> notifications();
    std::shared_ptr<Platform::Appearance const> appearance();
    std::shared_ptr<Platform::WidgetCenter> widgetCenter();

    /// Texts and named colours of the widget extension's own bundle, and texts of the Meetings package.
    std::shared_ptr<Platform::TextProvider const> widgetTexts();
    std::shared_ptr<Platform::ColorProvider const> widgetColors();
    std::shared_ptr<Platform::TextProvider const> meetingsTexts();

    /// Where the calendar store keeps its own files. Absent when the environment names no home.
    std::optional<Platform::CalendarStorePlaces> calendarPlaces();

    /// The person's calendar sources and consent. Null when the environment names no home.
    std::shared_ptr<Platform::CalendarStoreConfiguration const> calendarConfiguration();
    std::shared_ptr<Platform::ConsentRecord const> consent();

    /// The person's settings. Null when the environment names no home.
    std::shared_ptr<Platform::UserDefaults> userDefaults();

    /// The one calendar store of the process, and the packages' view of it. Throw Platform::EKError when the
    /// environment names no home.
    std::shared_ptr<Platform::EKEventStore> eventStore();
    std::shared_ptr<Meetings::EventKitStoring> eventKitStore();

    /// The same store as what it is. Throws as above.
    std::shared_ptr<Platform::FolderEventStore> calendarFolders();

    /// What the widget's timeline provider, view and intents are built from. The provider's tasks run on
    /// `executor`.
    WidgetExtension::ScheduleWidgetServices scheduleWidgetServices(Foundation::TaskExecutor executor);

private:
    struct Parts;
    explicit LiveServices(std::shared_ptr<Parts> parts);
    void logDamage(std::string const& message);

    std::shared_ptr<Parts> parts;
};

} // namespace Composition
