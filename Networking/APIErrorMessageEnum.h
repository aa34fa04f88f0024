#pragma once

#include "Networking/APIError.h"

#include <string>

/// The text that a person is shown for an error of the client; in Spanish, whatever the language.
namespace Networking::APIErrorMessageEnum {

std::string describe(APIError const& error, std::string const& notFoundMessage);

} // namespace Networking::APIErrorMessageEnum
