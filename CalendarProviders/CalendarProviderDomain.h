#pragma once

#include "CalendarProviders/CalendarProviderEntity.h"
#include "CalendarProviders/ResultEntity.h"

#include <vector>

/// The rules of a registration. Failures are told in `domainMessage`; successes yield nothing.
namespace CalendarProviders::CalendarProviderDomain {

/// Fails for a blank id, then for a blank e-mail address. Nothing else is looked at, and nothing trimmed.
ResultEntity validate(CalendarProviderEntity const& provider);

/// Fails when one of the candidate's kind is registered and the kind allows only one, enabled or not.
ResultEntity canRegister(CalendarProviderEntity const& candidate,
                         std::vector<CalendarProviderEntity> const& existing);

} // namespace CalendarProviders::CalendarProviderDomain
