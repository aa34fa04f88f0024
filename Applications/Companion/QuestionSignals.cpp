#include "Applications/Companion/QuestionSignals.h"

#include "Applications/Companion/SetupTexts.h"

namespace Companion {

QuestionSignals::QuestionSignals() : signals(Texts::interruptedAtAQuestion()) {}

} // namespace Companion
