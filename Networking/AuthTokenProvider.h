#pragma once

#include "Foundation/Task.h"

#include <string>

namespace Networking {

/// Hands out the bearer token of the backend.
class AuthTokenProvider {
public:
    virtual ~AuthTokenProvider() = default;

    /// The token for one request. Whatever it throws counts as a refusal. It must end soon after its task is
    /// cancelled: whoever bounds the wait awaits this, too.
    virtual Foundation::Task<std::string> token() = 0;
};

} // namespace Networking
