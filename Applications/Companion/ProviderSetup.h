#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Composition/LiveRegistryServices.h"
#include "CalendarProviders/CalendarProviderRegistryApplication.h"

namespace Companion {

/// The part of the set-up that registers the calendars of this computer, and so switches the widget on. It
/// may be repeated: what is registered stays as it is.
class ProviderSetup {
public:
    /// Both outlive this object.
    ProviderSetup(Invocation const& invocation, Composition::LiveServices& services);

    /// Says what it did, and yields whether anything was changed. Access to the calendars has been asked for
    /// before. Throws CommandError with ExitCode::failed and the way out.
    ///
    /// Where the desktop's keyring cannot be used, the person is offered a key file; without anybody to ask,
    /// and with --yes, none is made: that choice is never taken by itself.
    bool run();

private:
    using Registry = CalendarProviders::CalendarProviderRegistryApplication;
    using Provider = CalendarProviders::CalendarProviderEntity;

    bool choose(Composition::KeychainKind kind);
    Registry openedRegistry(bool& hasChanged);
    /// Asks without the lock: others need not wait for a person's answer.
    [[nodiscard]] bool isWanted(std::string const& question);
    [[nodiscard]] bool isKeyFileWanted(CalendarProviders::ResultEntity const& failure);
    bool registerThisComputer(Registry const& registry);
    bool keepRegistered(Registry const& registry, Provider provider);
    [[nodiscard]] Provider thisComputer() const;
    [[nodiscard]] std::string whatWasNotDone();
    void say(std::string const& text) const { invocation.console.writeLine(text); }

    Invocation const& invocation;
    Composition::LiveServices& services;
    Composition::LiveRegistryServices registryServices;
    std::unique_ptr<Platform::FileLocks::Held> lock; ///< While the registry is looked at and changed.
    bool takesDefaults;
};

} // namespace Companion
