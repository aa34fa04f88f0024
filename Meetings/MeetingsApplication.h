#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Date.h"
#include "Meetings/MeetRepository.h"

#include <memory>
#include <vector>

namespace Meetings {

/// The use cases on meets. A value; the tasks it returns keep what they need, also when it is gone.
class MeetingsApplication {
public:
    /// `calendar` decides which meets lie on a day.
    MeetingsApplication(std::shared_ptr<MeetRepository> repository, Foundation::Calendar calendar);

    /// The meets that start on the calendar day of `date`, earliest first; equal starts keep the order of
    /// the repository. Throws what the repository throws.
    [[nodiscard]] Foundation::Task<std::vector<MeetEntity>> fetchDailyMeets(Foundation::Date date) const;

    /// Throws MeetValidationError before anything is written, else what the repository throws.
    [[nodiscard]] Foundation::Task<MeetEntity> createMeet(MeetEntity meet) const;

    /// Throws as `createMeet`.
    [[nodiscard]] Foundation::Task<MeetEntity> editMeet(MeetEntity meet) const;

    /// Not validated. Throws what the repository throws.
    [[nodiscard]] Foundation::Task<void> deleteMeet(MeetEntity meet) const;

private:
    std::shared_ptr<MeetRepository> repository;
    Foundation::Calendar calendar;
};

} // namespace Meetings
