#include "Applications/Companion/SetupTexts.h"

#include "Applications/Companion/TextLookup.h"

namespace Companion::Texts {

std::string notSwitchedOnWithoutTheKey() {
    return text("not-switched-on-without-the-key");
}

std::string interruptedAtAQuestion() {
    return text("interrupted-at-a-question");
}

std::string interrupted() {
    return text("interrupted");
}

std::string interruptedInTheSetup(std::vector<std::string> const& done) {
    std::string list;
    for (auto const& part : done)
        list += (list.empty() ? "" : ", ") + part;
    return text("interrupted-in-the-set-up", list);
}

std::string setUpOwnCalendar() {
    return text("set-up-own-calendar");
}

std::string setUpAccess() {
    return text("set-up-access");
}

std::string setUpRegistration() {
    return text("set-up-registration");
}

std::string interruptedBeforeRegistrations() {
    return text("interrupted-before-registrations");
}

std::string interruptedInRegistrations() {
    return text("interrupted-in-registrations");
}

std::string interruptedKeepingAToken() {
    return text("interrupted-keeping-a-token");
}

std::string interruptedRemovingAToken() {
    return text("interrupted-removing-a-token");
}

std::string keyringToWaitFor() {
    return text("keyring-to-wait-for");
}

std::string registrationsToWaitFor() {
    return text("registrations-to-wait-for");
}

} // namespace Companion::Texts
