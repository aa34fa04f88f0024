#pragma once

#include "Foundation/JSON.h"

#include <string>

namespace Companion {

/// One compact document for other programs. Unlike the preference files it leaves "/" as it is, and it
/// escapes whatever a terminal or a reader of the plain document could be misled by. Throws CommandError with
/// ExitCode::failed for a text that is not UTF-8 or a float that is not finite.
std::string plainJSON(Foundation::JSON::Value const& value);

/// Whole numbers without a fraction, as every reader expects of seconds; others in their shortest form.
Foundation::JSON::Value numberValue(double value);

} // namespace Companion
