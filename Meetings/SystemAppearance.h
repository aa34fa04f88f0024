#pragma once

#include "Platform/Appearance/Appearance.h"

/// How the desktop looks to this package.
namespace Meetings::SystemAppearance {

/// Asked anew at every read; false where no desktop answers.
bool isDark(Platform::Appearance const& appearance);

} // namespace Meetings::SystemAppearance
