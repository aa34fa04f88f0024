#include "Applications/Companion/ProviderSetup.h"

#include "Applications/Companion/ProviderRegistry.h"
#include "Applications/Companion/ProviderTexts.h"
#include "Applications/Companion/SetupTexts.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Companion/WaitingLine.h"
#include "Foundation/Text.h"
#include "Platform/Clock/Clock.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unistd.h>
#include <utility>

namespace Companion {

using CalendarProviders::AccountProviderEnum;
using CalendarProviders::CalendarProviderEntity;
using Composition::KeychainKind;

namespace {

constexpr std::string_view providerId = "eventKit";

// Something to tell one computer's registration from another's; the person may edit it.
std::string personsAddress(Foundation::Environment const& environment) {
    auto user = environment.value("USER").value_or("");
    if (user.empty()) user = environment.value("LOGNAME").value_or("");
    if (user.empty()) user = "me";
    std::array<char, 256> host{};
    bool const isNamed = ::gethostname(host.data(), host.size() - 1) == 0 && host.front() != '\0';
    return Foundation::Text::sanitizedUTF8(user + "@" + (isNamed ? host.data() : "localhost"));
}

} // namespace

ProviderSetup::ProviderSetup(Invocation const& invocation, Composition::LiveServices& services)
    : invocation(invocation),
      services(services),
      registryServices(services),
      takesDefaults(invocation.values.has("--yes")) {}

bool ProviderSetup::run() {
    bool hasChanged = false;
    lock = requiredRegistryLock(services);
    if (auto const keychain = invocation.values.option("--keychain"))
        hasChanged = choose(Foundation::fromRawValue<KeychainKind>(*keychain).value());
    auto const registry = openedRegistry(hasChanged);
    hasChanged = registerThisComputer(registry) || hasChanged;
    lock.reset();
    return hasChanged;
}

bool ProviderSetup::choose(KeychainKind kind) {
    auto const chosen = [&] {
        ShownWait const wait(Texts::keyringToWaitFor(), invocation.environment);
        return registryServices.chooseKeychain(kind);
    }();
    if (!chosen) throw CommandError::failed(chosen.error());
    say(Texts::keychainChosen(kind == KeychainKind::file));
    for (auto const& warning : chosen->warnings)
        invocation.console.report(warning);
    return chosen->isNew;
}

ProviderSetup::Registry ProviderSetup::openedRegistry(bool& hasChanged) {
    auto made = awaitedRegistry(services, registryServices);
    if (!made.result && isKeyFileWanted(made)) {
        hasChanged = choose(KeychainKind::file);
        made = awaitedRegistry(services, registryServices);
    }
    return required<Registry>(made, whatWasNotDone());
}

bool ProviderSetup::isWanted(std::string const& question) {
    lock.reset();
    bool const isYes = invocation.console.ask(question) == true;
    lock = requiredRegistryLock(services);
    return isYes;
}

bool ProviderSetup::isKeyFileWanted(CalendarProviders::ResultEntity const& failure) {
    if (takesDefaults || invocation.values.has("--keychain")) return false;
    auto const kind = registryServices.chosenKeychain();
    if (!kind || *kind != KeychainKind::secretService) return false;
    // The key of what is registered is in the keyring, and cannot be taken along from one that is out of
    // reach.
    if (registryServices.isDatabaseThere()) return false;
    return isWanted(Texts::offerKeyFile(messageOf(failure)));
}

bool ProviderSetup::registerThisComputer(Registry const& registry) {
    auto const registered = [&registry]() -> std::optional<CalendarProviderEntity> {
        auto const providers =
            required<std::vector<CalendarProviderEntity>>(registry.getAll(), Texts::providersNotRead());
        auto const known =
            std::ranges::find(providers, AccountProviderEnum::eventKit, &CalendarProviderEntity::capProvider);
        return known == providers.end() ? std::nullopt : std::optional(*known);
    };
    if (auto const known = registered()) return keepRegistered(registry, *known);

    auto const provider = thisComputer();
    auto const outcome = registry.newProvider(provider);
    if (!outcome.result) {
        // Another set-up at the same moment may have been quicker.
        if (auto const known = registered()) return keepRegistered(registry, *known);
    }
    require(outcome, Texts::providerNotRegistered(provider.capId));
    checkMirror(services, registry, Texts::mirrorNotSavedBySetup);
    say(Texts::providerRegistered(provider.capDisplayName, provider.capEmail, provider.capId));
    return true;
}

bool ProviderSetup::keepRegistered(Registry const& registry, CalendarProviderEntity provider) {
    bool const isSwitchedOn =
        !provider.capIsEnabled && (takesDefaults || isWanted(Texts::offerEnabling(provider.capDisplayName)));
    // Another command may have changed it while the person thought about it.
    provider = registry.getOne(provider.capId).dataAs<CalendarProviderEntity>().value_or(provider);
    provider.capIsEnabled = provider.capIsEnabled || isSwitchedOn;
    bool const hasChanged = isSwitchedOn || !isMirrorRight(services, registry);
    if (hasChanged) {
        // Also writes the mirror anew where only that was wrong.
        require(registry.update(provider), Texts::providerNotChanged(provider.capId));
        checkMirror(services, registry, Texts::mirrorNotSavedBySetup);
    }
    if (isSwitchedOn)
        say(Texts::providerSwitched(provider.capDisplayName, true));
    else if (provider.capIsEnabled)
        say(Texts::providerIsRegistered(provider.capDisplayName, provider.capEmail, provider.capId));
    else
        say(Texts::providerStaysDisabled(provider.capDisplayName, provider.capId));
    return hasChanged;
}

CalendarProviderEntity ProviderSetup::thisComputer() const {
    return {.capId = std::string(providerId),
            .capProvider = AccountProviderEnum::eventKit,
            .capDisplayName = Texts::thisComputersCalendars(),
            .capDescription = "",
            .capEmail = personsAddress(invocation.environment),
            .capIsEnabled = true,
            .capRegisteredAt = services.clock()->now()};
}

std::string ProviderSetup::whatWasNotDone() {
    auto const kind = registryServices.chosenKeychain();
    bool const isKeyring = kind && *kind == KeychainKind::secretService;
    if (isKeyring && registryServices.isDatabaseThere()) return Texts::notSwitchedOnWithoutTheKey();
    return Texts::notSwitchedOn(isKeyring);
}

} // namespace Companion
