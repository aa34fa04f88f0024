#pragma once

#include "Foundation/UUID.h"

#include <string_view>

/// Identifiers that are the same at every run.
namespace Meetings::StableIdentifier {

/// The MD5 digest of the text's bytes, taken as a UUID unchanged: no version or variant bits are set.
Foundation::UUID uuid(std::string_view text);

} // namespace Meetings::StableIdentifier
