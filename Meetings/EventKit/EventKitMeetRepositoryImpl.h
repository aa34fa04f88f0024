#pragma once

#include "Foundation/Calendar.h"
#include "Meetings/EventKit/EventKitStoring.h"
#include "Meetings/EventKitAccountCalendarsEntity.h"
#include "Meetings/MeetRepository.h"
#include "Platform/Appearance/Appearance.h"
#include "Platform/Clock/Clock.h"
#include "Platform/Logging/Logger.h"
#include "Platform/Resources/TextProvider.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Meetings {

/// What a repository over the calendar store reads and where it writes.
struct EventKitMeetRepositorySettings {
    Foundation::Calendar calendar; ///< For all day arithmetic.
    std::int64_t daysBehind = 1;   ///< The range starts this many days before now, to the second.
    std::int64_t daysAhead = 14;   ///< The range ends this many days after now, to the second.
    std::set<std::string> hiddenCalendarIdentifiers = {}; ///< Their events are never fetched.
    /// Receives new meets; absent means the store's default calendar.
    std::optional<std::string> defaultCalendarIdentifier;
    std::string loggerCategory = "EventKitMeetRepositoryImpl";
};

/// What it needs from around it.
struct EventKitMeetRepositorySurroundings {
    std::shared_ptr<Platform::Clock const> clock;
    std::shared_ptr<Platform::TextProvider const> texts; ///< Of this package's bundle.
    std::shared_ptr<Platform::Appearance const> appearance;
    std::shared_ptr<Platform::LogSink> logSink;
};

/// The meets of the user's calendar store. Every operation asks for access first and throws
/// EventKitMeetRepositoryError: `accessDenied` without full access, and as said at each.
class EventKitMeetRepositoryImpl final : public MeetRepository {
public:
    EventKitMeetRepositoryImpl(std::shared_ptr<EventKitStoring> eventStore,
                               EventKitMeetRepositorySettings settings,
                               EventKitMeetRepositorySurroundings surroundings);

    /// The events of the range outside hidden calendars, in the store's order.
    Foundation::Task<std::vector<MeetEntity>> fetchAllMeets() override;

    /// Stores title, times, notes and recurrence as a new event; the all-day flag, the location, the link and
    /// the meet's own calendar are not written. Throws `saveFailed`.
    Foundation::Task<MeetEntity> create(MeetEntity meet) override;

    /// Stores the same fields in the event found by `metOriginalIdentifier` within a day of `metDate`, as a
    /// change of this one occurrence. Throws `eventNotFound`, `saveFailed`.
    Foundation::Task<MeetEntity> update(MeetEntity meet) override;

    /// Removes the event, of a repeating one the series. Throws `eventNotFound`, `saveFailed`.
    Foundation::Task<void> deleteMeet(MeetEntity meet) override;

    /// The accounts with their calendars, in the store's order.
    Foundation::Task<std::vector<EventKitAccountCalendarsEntity>> listAvailableCalendars();

private:
    Foundation::Task<void> requestAccessIfNeeded();
    Foundation::Task<bool> askForAccess();
    [[nodiscard]] Platform::EKCalendar calendarForNewMeets() const;
    [[nodiscard]] std::optional<Platform::EKEvent> occurrenceWithIdentifier(std::string_view identifier,
                                                                            Foundation::Date near) const;
    void write(MeetEntity const& meet, Platform::EKEvent& event) const;
    void save(Platform::EKEvent& event) const;
    void remove(Platform::EKEvent const& event, Platform::EKSpan span) const;
    [[nodiscard]] MeetEntity toMeet(Platform::EKEvent const& event,
                                    Platform::Appearance const& appearance) const;

    std::shared_ptr<EventKitStoring> eventStore;
    EventKitMeetRepositorySettings settings;
    EventKitMeetRepositorySurroundings surroundings;
    Platform::Logger logger;
};

} // namespace Meetings
