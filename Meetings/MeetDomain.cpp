#include "Meetings/MeetDomain.h"

#include "Foundation/Text.h"
#include "Meetings/MeetValidationError.h"

namespace Meetings::MeetDomain {

void validate(MeetEntity const& meet) {
    if (Foundation::Text::trimmingWhitespacesAndNewlines(meet.metName).empty()) {
        throw MeetValidationError(MeetValidationError::Case::invalidTitle);
    }
    // Written so that a duration which is not a number fails too.
    if (meet.metDuration > 0) return;
    throw MeetValidationError(MeetValidationError::Case::invalidTimeRange);
}

} // namespace Meetings::MeetDomain
