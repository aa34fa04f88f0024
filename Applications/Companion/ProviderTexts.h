#pragma once

#include <string>
#include <string_view>

/// What is said of the registered calendar providers.
namespace Companion::Texts {

std::string noProviders();
std::string providerState(bool isEnabled);
std::string providersNotRead();

// What was not done, for want of the key of the registrations, and what helps.
std::string withoutKeyring(std::string_view whatWasNotDone);
std::string withoutTheKeyInTheKeyring(std::string_view whatWasNotDone);
std::string withoutKeyFile(std::string_view whatWasNotDone);

std::string providerNotRegistered(std::string_view id);
std::string providerRegistered(std::string_view name, std::string_view email, std::string_view id);
std::string providerIsRegistered(std::string_view name, std::string_view email, std::string_view id);
std::string providerStaysDisabled(std::string_view name, std::string_view id);
std::string nothingToEdit();
std::string providerNotChanged(std::string_view id);
std::string providerChanged(std::string_view name, std::string_view email);
std::string providerSwitched(std::string_view name, bool isEnabled);
std::string providerNotRemoved(std::string_view id);
std::string providerRemoved(std::string_view name);
std::string providerIsGone(std::string_view id);
std::string mirrorNotSaved(std::string_view why);
std::string mirrorNotSavedBySetup(std::string_view why);
std::string databaseSetAside(std::string_view copy);

} // namespace Companion::Texts
