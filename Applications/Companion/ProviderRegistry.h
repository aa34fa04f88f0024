#pragma once

#include "Applications/Companion/Console.h"
#include "Applications/Composition/LiveRegistryServices.h"
#include "Applications/Composition/LiveServices.h"
#include "CalendarProviders/CalendarProviderRegistryApplication.h"
#include "CalendarProviders/ResultEntity.h"
#include "Platform/Files/FileLocks.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What the commands on the registry of calendar providers do alike.
namespace Companion {

/// The one message of a failure.
std::string messageOf(CalendarProviders::ResultEntity const& result);

/// Throws CommandError with ExitCode::failed for a failure: what was not done, and the result's one message
/// as the last line.
void require(CalendarProviders::ResultEntity const& result, std::string const& whatWasNotDone);

/// The data of a success. Throws as above.
template <typename Value>
Value required(CalendarProviders::ResultEntity const& result, std::string const& whatWasNotDone) {
    require(result, whatWasNotDone);
    return result.dataAs<Value>().value();
}

/// Keeps every other command off the registry while it is held, from the first look to the last change.
/// Throws CommandError with ExitCode::failed when others do not end, or no lock can be had.
std::unique_ptr<Platform::FileLocks::Held> requiredRegistryLock(Composition::LiveServices& services);

/// What a line says that is waited for while the person's keychain works.
std::string whatKeepsSecrets(Composition::LiveRegistryServices& services);

/// The registry over the person's keychain and database, or why there is none; a terminal is told while the
/// keychain lets wait.
CalendarProviders::ResultEntity awaitedRegistry(Composition::LiveServices& services,
                                                Composition::LiveRegistryServices& registryServices);

/// The registry over the person's keychain and database, for who holds the lock. Throws as above, also where
/// there is no home.
CalendarProviders::CalendarProviderRegistryApplication requiredRegistry(Composition::LiveServices& services,
                                                                        std::string const& whatWasNotDone);

/// Whether the mirror that the widget reads says what the registry says. Throws as above when that cannot be
/// read.
bool isMirrorRight(Composition::LiveServices& services,
                   CalendarProviders::CalendarProviderRegistryApplication const& registry);

/// Throws CommandError with ExitCode::failed when the mirror is not right, which the registry itself never
/// tells; `message` makes the words from the reason why it could not be written.
void checkMirror(Composition::LiveServices& services,
                 CalendarProviders::CalendarProviderRegistryApplication const& registry,
                 std::string (*message)(std::string_view why));

/// Reports at its end what was set aside since its beginning: a database that did not open is emptied without
/// a word by the registry, and nobody is to lose a registration unawares.
class QuarantineReport {
public:
    /// Both outlive this object.
    QuarantineReport(Composition::LiveServices& services, Console const& console);
    ~QuarantineReport();
    QuarantineReport(QuarantineReport const&) = delete;
    QuarantineReport& operator=(QuarantineReport const&) = delete;

private:
    [[nodiscard]] std::vector<std::filesystem::path> copies() const;

    Composition::LiveServices& services;
    Console const& console;
    std::vector<std::filesystem::path> before;
};

} // namespace Companion
