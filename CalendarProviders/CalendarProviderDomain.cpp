#include "CalendarProviders/CalendarProviderDomain.h"

#include "Foundation/RawValue.h"
#include "Foundation/Text.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace CalendarProviders::CalendarProviderDomain {
namespace {

bool isBlank(std::string_view text) {
    return Foundation::Text::trimmingWhitespacesAndNewlines(text).empty();
}

} // namespace

ResultEntity validate(CalendarProviderEntity const& provider) {
    if (isBlank(provider.capId)) return failed({.domainMessage = "The provider id cannot be empty"});
    if (isBlank(provider.capEmail)) return failed({.domainMessage = "The provider email cannot be empty"});
    return succeeded();
}

ResultEntity canRegister(CalendarProviderEntity const& candidate,
                         std::vector<CalendarProviderEntity> const& existing) {
    if (allowsMultipleAccounts(candidate.capProvider)) return succeeded();
    auto const isRegistered = std::ranges::find(existing, candidate.capProvider,
                                                &CalendarProviderEntity::capProvider) != existing.end();
    if (isRegistered) {
        return failed({.domainMessage = "A provider of type " +
                                        std::string(Foundation::rawValue(candidate.capProvider)) +
                                        " is already registered"});
    }
    return succeeded();
}

} // namespace CalendarProviders::CalendarProviderDomain
