#pragma once

#include "Applications/Companion/EndingSignals.h"

namespace Companion {

/// While this lives, Ctrl-C and SIGTERM end the program as they should at a question. Nothing is being
/// written while a person thinks, so that what was done is known.
class QuestionSignals {
public:
    QuestionSignals();

private:
    EndingSignals signals;
};

} // namespace Companion
