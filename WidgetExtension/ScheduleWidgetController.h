#pragma once

#include "Foundation/Date.h"
#include "Foundation/Task.h"
#include "Meetings/MeetEntity.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <vector>

namespace WidgetExtension {

/// Loads the meets of one day. It keeps nothing between two calls.
class ScheduleWidgetController {
public:
    explicit ScheduleWidgetController(ScheduleWidgetServices services);

    struct DayMeetings {
        std::vector<Meetings::MeetEntity> meetings; ///< Earliest first.
        bool hasAccessError;                        ///< Only when the calendar store denied access.

        bool operator==(DayMeetings const&) const = default;
    };

    /// Never throws: without the calendar account, and for every failure but denied access, the day is empty.
    /// The task keeps what it needs, also when the controller is gone.
    [[nodiscard]] Foundation::Task<DayMeetings> getTodaysMeetings(Foundation::Date date) const;

private:
    ScheduleWidgetServices services;
};

} // namespace WidgetExtension
