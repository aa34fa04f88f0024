#include "Applications/Companion/LiveTexts.h"

#include "Applications/Companion/TextLookup.h"

namespace Companion::Texts {

std::string beyondTheButtons(std::int64_t offset, std::int64_t furthest) {
    return text("beyond-the-buttons", std::to_string(offset), std::to_string(furthest));
}

std::string liveNeedsTerminal() {
    return text("live-needs-terminal");
}

std::string liveNeedsAnotherTerminal() {
    return text("live-needs-another-terminal");
}

std::string liveKeys() {
    return text("live-keys");
}

} // namespace Companion::Texts
