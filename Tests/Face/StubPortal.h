#pragma once

#include "Tests/Platform/ObjectOnBus.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

/// A desktop portal of the test's own: answers `Read` on a thread of its own with the values it was given,
/// an error for any other key, or not at all.
class StubPortal {
public:
    enum class Manner : std::uint8_t { answers, staysSilent };

    /// Owns the portal's name on the bus once constructed.
    explicit StubPortal(std::string const& address, Manner manner = Manner::answers);

    /// `key` of the appearance's namespace, or another namespace, a blank and a key; `value` in GVariant's
    /// text form, such as "<uint32 1>"; answered as it stands inside the reply's variant.
    void set(std::string const& key, std::string const& value);

    /// Sends `SettingChanged` for a key of a namespace.
    void announce(std::string const& space, std::string const& key);

    [[nodiscard]] int reads() const { return readCount; }

private:
    void read(GVariant* arguments, GDBusMethodInvocation* invocation);

    Manner manner;
    std::mutex mutex;
    std::map<std::string, std::string> values;
    std::atomic<int> readCount = 0;
    ObjectOnBus object;
};
