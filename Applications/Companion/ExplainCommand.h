#pragma once

#include "Applications/Companion/CommandTable.h"

namespace Companion {

Command explainCommand();

} // namespace Companion
