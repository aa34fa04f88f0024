#pragma once

#include "Samples/backend/EventEndpoint.h"
#include "Samples/backend/HostileAnswer.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace Backend {

struct BackendServerOptions {
    std::uint16_t port = 0; ///< On 127.0.0.1; 0 lets the system choose.
    std::optional<HostileMode> hostileMode = std::nullopt;
};

/// Serves `endpoint` on 127.0.0.1 until SIGINT or SIGTERM. `listening` is told the base URL once connections
/// are accepted. Yields the reason when it cannot listen.
std::optional<std::string> serve(EventEndpoint& endpoint, BackendServerOptions options,
                                 std::function<void(std::string const& baseURL)> listening);

} // namespace Backend
