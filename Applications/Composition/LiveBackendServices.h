#pragma once

#include "Applications/Composition/BackendSetting.h"
#include "Applications/Composition/BackendTokens.h"
#include "Networking/AuthTokenProvider.h"

#include <expected>
#include <memory>
#include <string>

namespace Meetings {
class RemoteEventRepositoryImpl;
}
namespace Platform {
class ConsoleOutput;
} // namespace Platform

namespace Composition {

class LiveServices;
class WitnessedURLSession;

/// The live parts below the backend's meets. They are apart from the others because the widget needs none of
/// them, and so need not load the libraries of the network.
class LiveBackendServices final {
public:
    /// `services` outlives this object.
    explicit LiveBackendServices(LiveServices& services);
    ~LiveBackendServices();

    LiveBackendServices(LiveBackendServices const&) = delete;
    LiveBackendServices& operator=(LiveBackendServices const&) = delete;

    /// Null when the environment names no home.
    std::shared_ptr<BackendSetting const> setting();

    /// The tokens in the keychain of the person's choice. The error is a sentence for the person.
    std::expected<BackendTokens, std::string> tokens();

    /// The meets of the backend at `baseURL`. Its requests are logged if the person wants that, and printed
    /// to `console` then.
    std::shared_ptr<Meetings::RemoteEventRepositoryImpl>
    meets(Foundation::URL const& baseURL, std::shared_ptr<Networking::AuthTokenProvider> tokenProvider,
          std::shared_ptr<Platform::ConsoleOutput> console);

    /// What came of the last request of these meets.
    [[nodiscard]] WitnessedURLSession const& exchanges() const { return *session; }

private:
    LiveServices& services;
    std::shared_ptr<WitnessedURLSession> session;
};

} // namespace Composition
