#pragma once

#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Foundation/Task.h"
#include "Meetings/EventKit/LiveEventKitStore.h"
#include "Platform/Appearance/FixedAppearance.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/EventStore/InMemoryEventStore.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"
#include "Platform/Resources/TableColorProvider.h"
#include "Platform/Resources/TableTextProvider.h"
#include "Tests/Meetings/EventKit/EventFixtures.h"
#include "Tests/Meetings/MeetFixtures.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <boost/asio/io_context.hpp>

#include <memory>
#include <string>
#include <vector>

namespace WidgetExtension {

constexpr double wednesday = 1709683200; // 2024-03-06T00:00:00Z
constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double day = 24 * hour;

constexpr char const* offsetFile = "/container/scheduleWidgetDayOffset.json";

/// Everything that the widget stands on, as fakes: it is 2024-03-06 09:30 in UTC, the calendar account is
/// enabled and access is granted.
struct WidgetSurroundings {
    WidgetSurroundings() {
        CalendarProviders::EnabledCalendarAccountsStore::save(
            *files, {CalendarProviders::AccountProviderEnum::eventKit});
    }

    [[nodiscard]] ScheduleWidgetServices services() {
        return {
            .clock = clock,
            .region = region,
            .files = files,
            .appearance = std::make_shared<Platform::FixedAppearance>(),
            .texts = std::make_shared<Platform::TableTextProvider>(),
            .colors = std::make_shared<Platform::TableColorProvider>(),
            .meetingsTexts = std::make_shared<Platform::TableTextProvider>(),
            .logSink = log,
            .eventStore =
                [this] {
                    ++storesMade;
                    return std::make_shared<Meetings::LiveEventKitStore>(store);
                },
            .executor = Foundation::TaskExecutor(context.get_executor()),
        };
    }

    void setOffset(std::string content) { files->place(offsetFile, std::move(content)); }

    boost::asio::io_context context;
    std::shared_ptr<Platform::FixedClock> clock = std::make_shared<Platform::FixedClock>(
        Foundation::Date{.secondsSince1970 = wednesday + 9 * hour + 30 * minute});
    std::shared_ptr<Platform::RegionSettings> region = std::make_shared<Platform::FixedRegionSettings>(
        Meetings::utcCalendar(), Foundation::Locale{.identifier = "en"});
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::InMemoryEventStore> store =
        std::make_shared<Platform::InMemoryEventStore>(std::vector{Meetings::someSource()});
    std::shared_ptr<Platform::RecordingLogSink> log = std::make_shared<Platform::RecordingLogSink>();
    int storesMade = 0;
};

inline std::vector<std::string> namesOf(std::vector<Meetings::MeetEntity> const& meetings) {
    std::vector<std::string> names;
    for (auto const& meeting : meetings)
        names.push_back(meeting.metName);
    return names;
}

inline Platform::EKEvent namedEventAt(double secondsSince1970, std::string title) {
    auto event = Meetings::eventAt(secondsSince1970, title);
    event.title = std::move(title);
    return event;
}

} // namespace WidgetExtension
