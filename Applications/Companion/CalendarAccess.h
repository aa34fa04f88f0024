#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Composition/LiveServices.h"

#include <string>

/// Whether the calendars may be read, and what helps when they may not.
namespace Companion {

/// Prints what the person answered, and every calendar folder that the file system refuses to open. Throws
/// CommandError with ExitCode::failed when the environment names no home, and when the answer cannot be read.
void sayAccess(Invocation const& invocation, Composition::LiveServices& services);

/// The same for a command that has just changed the answer.
void confirmAccess(Invocation const& invocation, Composition::LiveServices& services);

/// Why the calendars may not be read and what to do: `consentIsMissing`, unless the answer cannot be read or
/// the folders themselves refuse.
std::string whyNoAccess(Composition::LiveServices& services, std::string const& consentIsMissing);

/// Why the calendars of this computer are not shown, where the widget was told of none: they are not switched
/// on, or what it was told cannot be read.
std::string whyNotSwitchedOn(Composition::LiveServices& services);

} // namespace Companion
