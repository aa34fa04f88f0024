#pragma once

#include "Meetings/MeetEntity.h"

/// The rules of a meet.
namespace Meetings::MeetDomain {

/// Throws MeetValidationError: first for a title that is blank, then for a duration that is not above zero.
void validate(MeetEntity const& meet);

} // namespace Meetings::MeetDomain
