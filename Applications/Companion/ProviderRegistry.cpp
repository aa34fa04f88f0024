#include "Applications/Companion/ProviderRegistry.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/ProviderTexts.h"
#include "Applications/Companion/SetupTexts.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Companion/WaitingLine.h"
#include "Applications/Composition/LiveRegistryServices.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Platform/ObjectDatabase/Quarantine.h"

#include <algorithm>
#include <exception>
#include <set>
#include <vector>

namespace Companion {

using namespace CalendarProviders;

namespace {

std::set<AccountProviderEnum> enabledKinds(CalendarProviderRegistryApplication const& registry) {
    std::set<AccountProviderEnum> enabled;
    for (auto const& provider :
         required<std::vector<CalendarProviderEntity>>(registry.getAll(), Texts::providersNotRead()))
        if (provider.capIsEnabled) enabled.insert(provider.capProvider);
    return enabled;
}

// Without a key there is no registry: what was not done, and what gives the key back.
std::string withRemedy(Composition::LiveRegistryServices& services, std::string const& whatWasNotDone) {
    auto const kind = services.chosenKeychain();
    if (!kind) return whatWasNotDone; // The failure itself is a sentence that says what to do.
    if (*kind == Composition::KeychainKind::file) return Texts::withoutKeyFile(whatWasNotDone);
    return services.isDatabaseThere() ? Texts::withoutTheKeyInTheKeyring(whatWasNotDone)
                                      : Texts::withoutKeyring(whatWasNotDone);
}

} // namespace

std::string messageOf(ResultEntity const& result) {
    for (auto const& message : {result.infrastructureMessage, result.domainMessage, result.databaseMessage})
        if (message) return *message;
    return result.message;
}

void require(ResultEntity const& result, std::string const& whatWasNotDone) {
    if (!result.result) throw CommandError::refused(whatWasNotDone, messageOf(result));
}

std::unique_ptr<Platform::FileLocks::Held> requiredRegistryLock(Composition::LiveServices& services) {
    ShownWait const wait(Texts::registrationsToWaitFor(), services.environment());
    auto held = Composition::LiveRegistryServices(services).lock();
    if (!held) throw CommandError::failed(held.error());
    return *std::move(held);
}

ResultEntity awaitedRegistry(Composition::LiveServices& services,
                             Composition::LiveRegistryServices& registryServices) {
    ShownWait const wait(whatKeepsSecrets(registryServices), services.environment());
    return registryServices.calendarProviderRegistry();
}

std::string whatKeepsSecrets(Composition::LiveRegistryServices& services) {
    return services.chosenKeychain() == Composition::KeychainKind::secretService
               ? Texts::keyringToWaitFor()
               : Texts::registrationsToWaitFor();
}

CalendarProviderRegistryApplication requiredRegistry(Composition::LiveServices& services,
                                                     std::string const& whatWasNotDone) {
    // Without a home there is no place for anything below.
    static_cast<void>(requiredConfiguration(services));
    Composition::LiveRegistryServices registryServices(services);
    auto const made = awaitedRegistry(services, registryServices);
    if (!made.result)
        throw CommandError::refused(withRemedy(registryServices, whatWasNotDone), messageOf(made));
    return required<CalendarProviderRegistryApplication>(made, whatWasNotDone);
}

bool isMirrorRight(Composition::LiveServices& services, CalendarProviderRegistryApplication const& registry) {
    return EnabledCalendarAccountsStore::load(*services.files()) == enabledKinds(registry);
}

void checkMirror(Composition::LiveServices& services, CalendarProviderRegistryApplication const& registry,
                 std::string (*message)(std::string_view why)) {
    auto const enabled = enabledKinds(registry);
    Platform::WriteWitness const files(services.files());
    if (EnabledCalendarAccountsStore::load(files) == enabled) return;
    // The registry writes it without a word; writing it once more mends it or tells why not.
    EnabledCalendarAccountsStore::save(files, enabled);
    if (EnabledCalendarAccountsStore::load(files) != enabled)
        throw CommandError::failed(message(whyNotKept(files)));
}

QuarantineReport::QuarantineReport(Composition::LiveServices& services, Console const& console)
    : services(services),
      console(console),
      before(copies()) {}

QuarantineReport::~QuarantineReport() {
    try {
        for (auto const& copy : copies())
            if (std::ranges::find(before, copy) == before.end())
                console.report(Texts::databaseSetAside(shownPath(copy)));
    } catch (std::exception const&) { // NOLINT(bugprone-empty-catch): there is nobody left to tell.
    }
}

std::vector<std::filesystem::path> QuarantineReport::copies() const {
    auto const database = Composition::LiveRegistryServices(services).databaseFile();
    return database ? Platform::Quarantine::copies(*database) : std::vector<std::filesystem::path>();
}

} // namespace Companion
