#pragma once

#include "Applications/Composition/LiveServices.h"
#include "CalendarProviders/CalendarProviderRegistryApplication.h"
#include "CalendarProviders/ResultEntity.h"

#include <string>

/// What the commands on the registry of calendar providers do alike.
namespace Companion {

/// Throws CommandError with ExitCode::failed for a failure: what was not done, and the result's one message
/// as the last line.
void require(CalendarProviders::ResultEntity const& result, std::string const& whatWasNotDone);

/// The data of a success. Throws as above.
template <typename Value>
Value required(CalendarProviders::ResultEntity const& result, std::string const& whatWasNotDone) {
    require(result, whatWasNotDone);
    return result.dataAs<Value>().value();
}

/// The registry over the person's keychain and database. Throws as above, also where there is no home.
CalendarProviders::CalendarProviderRegistryApplication requiredRegistry(Composition::LiveServices& services,
                                                                        std::string const& whatWasNotDone);

/// Throws CommandError with ExitCode::failed when the mirror that the widget reads does not say what the
/// registry says: the registry itself never tells that it could not be written.
void checkMirror(Composition::LiveServices& services,
                 CalendarProviders::CalendarProviderRegistryApplication const& registry);

} // namespace Companion
