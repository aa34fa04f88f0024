#pragma once

#include "Platform/ObjectDatabase/DatabaseFile.h"
#include "Platform/ObjectDatabase/MemoryDatabase.h"
#include "Platform/ObjectDatabase/ObjectDatabaseConfiguration.h"

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <vector>

namespace Platform {

/// Why a sealed database could not be used.
struct SealedStoreFailure {
    ObjectDatabaseError error;
    /// Whether it is about this file or its place, and not about something that is in short supply.
    bool isLasting;
    /// The file that was read, where one was.
    std::optional<DatabaseFileStamp> stamp;
};

/// One sealed database as its file is at each call. Nothing is kept between calls but the configuration.
class SealedStore {
public:
    using Loaded = std::expected<MemoryDatabase, SealedStoreFailure>;

    /// The configuration has a location. What may pass is waited for at most that long in each call.
    SealedStore(ObjectDatabaseConfiguration configuration, std::chrono::milliseconds patience);

    /// What the file holds; makes or migrates it first where that is due. Reading takes no lock: the file is
    /// only ever replaced whole.
    Loaded load();

    /// Changes what the file holds now, under the lock, and yields the outcome. A body that changes nothing
    /// writes nothing.
    Loaded change(std::function<void(ObjectTransaction&)> const& body);

    [[nodiscard]] bool isReadOnly() const { return configuration.readOnly; }

private:
    /// What the file still lacks.
    enum class Due : std::uint8_t { nothing, creation, migration };

    struct Current {
        MemoryDatabase content;
        Due due;
        std::optional<DatabaseFileStamp> stamp;
    };

    std::expected<Current, SealedStoreFailure> current();
    std::expected<Current, SealedStoreFailure> decoded(DatabaseFileContent const& file) const;
    std::optional<SealedStoreFailure> run(std::function<void(ObjectTransaction&)> const& body,
                                          Current& current) const;
    std::expected<DatabaseLock, std::error_code> lock();

    ObjectDatabaseConfiguration configuration;
    std::chrono::milliseconds patience;
    DatabaseFile file;
};

} // namespace Platform
