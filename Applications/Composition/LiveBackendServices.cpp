#include "Applications/Composition/LiveBackendServices.h"

#include "Applications/Composition/LiveRegistryServices.h"
#include "Applications/Composition/LiveServices.h"
#include "Applications/Composition/WitnessedURLSession.h"
#include "Meetings/Remote/RemoteEventRepositoryImpl.h"
#include "Networking/APIClient.h"
#include "Platform/Appearance/Appearance.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/URLSession/CurlURLSession.h"

#include <utility>

namespace Composition {

LiveBackendServices::LiveBackendServices(LiveServices& services)
    : services(services),
      session(std::make_shared<WitnessedURLSession>(std::make_shared<Platform::CurlURLSession>())) {}

LiveBackendServices::~LiveBackendServices() = default;

std::shared_ptr<BackendSetting const> LiveBackendServices::setting() {
    auto const places = services.calendarPlaces();
    if (!places) return nullptr;
    return std::make_shared<BackendSetting>(places->configurationDirectory, services.files());
}

std::expected<BackendTokens, std::string> LiveBackendServices::tokens() {
    auto keychain = LiveRegistryServices(services).keychain();
    if (!keychain) return std::unexpected(keychain.error());
    return BackendTokens(*std::move(keychain));
}

std::shared_ptr<Meetings::RemoteEventRepositoryImpl>
LiveBackendServices::meets(Foundation::URL const& baseURL,
                           std::shared_ptr<Networking::AuthTokenProvider> tokenProvider,
                           std::shared_ptr<Platform::ConsoleOutput> console) {
    auto const chosen = setting();
    Networking::NetworkLoggerServices logging = {.files = services.files(),
                                                 .console = std::move(console),
                                                 .clock = services.clock(),
                                                 .region = services.region()};
    Networking::APIClient client(baseURL, std::move(tokenProvider), session, chosen && chosen->isLogEnabled(),
                                 std::move(logging));
    return std::make_shared<Meetings::RemoteEventRepositoryImpl>(std::move(client), services.appearance());
}

} // namespace Composition
