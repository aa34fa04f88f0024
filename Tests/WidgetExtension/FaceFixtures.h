#pragma once

#include "Platform/Resources/Bundle.h"
#include "Platform/Resources/TextProvider.h"
#include "Tests/WidgetExtension/WidgetFixtures.h"
#include "WidgetExtension/ScheduleWidgetView.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace WidgetExtension {

/// The extension's own texts in one language, from its string tables as they stand in the source.
class TableInSource final : public Platform::TextProvider {
public:
    explicit TableInSource(std::string language)
        : bundle(
              Platform::Bundle::open(QUILLORA_SOURCE_DIR "/WidgetExtension/Resources", {std::move(language)})
                  .value()) {}

    [[nodiscard]] std::string text(std::string_view key) const override { return bundle.text(key); }

private:
    Platform::Bundle bundle;
};

/// The face of those meets on Wednesday 2024-03-06 at 08:00 in UTC, which is today; light, English, large.
inline ScheduleWidgetView viewOf(std::vector<Meetings::MeetEntity> meetings,
                                 Platform::WidgetFamily family = Platform::WidgetFamily::systemLarge,
                                 std::string const& language = "en") {
    Foundation::Date const morning = {.secondsSince1970 = wednesday + 8 * hour};
    return {
        .entry = {.date = morning, .meetings = std::move(meetings), .hasAccessError = false, .dayOffset = 0},
        .colorScheme = Platform::ColorScheme::light,
        .family = family,
        .calendar = Meetings::utcCalendar(),
        .now = morning,
        .locale = {.identifier = language},
        .texts = std::make_shared<TableInSource>(language),
        .colors = std::make_shared<Platform::TableColorProvider>(),
    };
}

inline Meetings::MeetEntity timedMeet(int number) {
    auto meeting =
        Meetings::meetAt(wednesday + 9 * hour + number * 30 * minute, "Meet " + std::to_string(number + 1));
    meeting.metId.bytes = {};
    meeting.metId.bytes[15] = static_cast<std::uint8_t>(number + 1);
    return meeting;
}

/// So many meets of half an hour, one after the other from 09:00.
inline std::vector<Meetings::MeetEntity> timedMeets(int count) {
    std::vector<Meetings::MeetEntity> meetings;
    for (int number = 0; number < count; ++number)
        meetings.push_back(timedMeet(number));
    return meetings;
}

inline Meetings::MeetEntity allDayMeet(std::string name) {
    auto meeting = Meetings::meetAt(wednesday, std::move(name));
    meeting.metIsAllDay = true;
    meeting.metDuration = day;
    meeting.metColor.hexValue = "#336699";
    return meeting;
}

} // namespace WidgetExtension
