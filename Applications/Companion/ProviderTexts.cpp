#include "Applications/Companion/ProviderTexts.h"

#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/TextLookup.h"

namespace Companion::Texts {

std::string noProviders() {
    return text("no-providers");
}

std::string providerState(bool isEnabled) {
    return isEnabled ? text("provider-is-enabled") : text("provider-is-disabled");
}

std::string providersNotRead() {
    return text("providers-not-read");
}

std::string withoutKeyring(std::string_view whatWasNotDone) {
    return text("without-keyring", whatWasNotDone);
}

std::string withoutTheKeyInTheKeyring(std::string_view whatWasNotDone) {
    return text("without-the-key-in-the-keyring", whatWasNotDone);
}

std::string withoutKeyFile(std::string_view whatWasNotDone) {
    return text("without-key-file", whatWasNotDone);
}

std::string providerNotRegistered(std::string_view id) {
    return text("provider-not-registered", quoted(id));
}

std::string providerRegistered(std::string_view name, std::string_view email, std::string_view id) {
    return text("provider-registered", quoted(name), quoted(email), quoted(id));
}

std::string providerIsRegistered(std::string_view name, std::string_view email, std::string_view id) {
    return text("provider-is-registered", quoted(name), quoted(email), quoted(id));
}

std::string providerStaysDisabled(std::string_view name, std::string_view id) {
    return text("provider-stays-disabled", quoted(name), shellWord(id));
}

std::string nothingToEdit() {
    return text("nothing-to-edit");
}

std::string providerNotChanged(std::string_view id) {
    return text("provider-not-changed", quoted(id));
}

std::string providerChanged(std::string_view name, std::string_view email) {
    return text("provider-changed", quoted(name), quoted(email));
}

std::string providerSwitched(std::string_view name, bool isEnabled) {
    return isEnabled ? text("provider-enabled", quoted(name)) : text("provider-disabled", quoted(name));
}

std::string providerNotRemoved(std::string_view id) {
    return text("provider-not-removed", quoted(id));
}

std::string providerRemoved(std::string_view name) {
    return text("provider-removed", quoted(name));
}

std::string providerIsGone(std::string_view id) {
    return text("provider-is-gone", quoted(id));
}

std::string mirrorNotSaved(std::string_view why) {
    return text("mirror-not-saved", why);
}

std::string mirrorNotSavedBySetup(std::string_view why) {
    return text("mirror-not-saved-by-setup", why);
}

std::string databaseSetAside(std::string_view copy) {
    return text("database-set-aside", copy);
}

} // namespace Companion::Texts
