#include "CalendarProviders/AccountProviderEnum.h"

namespace CalendarProviders {

// Each answer names every kind, so that a new one does not compile until it is decided here. The text after
// the switch is never reached with a kind of this program.

std::string_view displayName(AccountProviderEnum provider) {
    switch (provider) {
    case AccountProviderEnum::eventKit: return "iOS calendar";
    }
    return {};
}

std::string_view iconSystemName(AccountProviderEnum provider) {
    switch (provider) {
    case AccountProviderEnum::eventKit: return "icloud.fill";
    }
    return {};
}

bool allowsMultipleAccounts(AccountProviderEnum provider) {
    switch (provider) {
    case AccountProviderEnum::eventKit: return false;
    }
    return false;
}

} // namespace CalendarProviders
