#pragma once

#include "Tests/Platform/ObjectOnBus.h"

#include <cstdint>
#include <string>

/// Something on the bus that has the name of a secret service, and bad manners.
class StubSecretService {
public:
    enum class Manner : std::uint8_t {
        denies,      ///< Answers every call with "access denied".
        staysSilent, ///< Takes every call and never answers.
        diesOnCall,  ///< Leaves the bus at the first call.
        failsOddly,  ///< Answers every call with an error of its own.
    };

    /// Owns the name of the secret service once constructed.
    StubSecretService(std::string const& address, Manner manner);

private:
    void answer(GDBusMethodInvocation* invocation) const;

    Manner manner;
    ObjectOnBus object;
};
