#include "Applications/Companion/SetupTexts.h"

#include "Applications/Companion/TextLookup.h"

namespace Companion::Texts {

std::string notSwitchedOnWithoutTheKey() {
    return text("not-switched-on-without-the-key");
}

std::string interruptedAtAQuestion() {
    return text("interrupted-at-a-question");
}

} // namespace Companion::Texts
