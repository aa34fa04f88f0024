#pragma once

#include "Foundation/SecretBytes.h"
#include "Platform/ObjectDatabase/ObjectDatabase.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace Platform {

/// Brings the objects of an earlier schema up to date. It is given that schema's version; throwing means that
/// it cannot be done.
using MigrationBlock = std::function<void(ObjectTransaction& migration, std::uint64_t oldSchemaVersion)>;

/// Which database is meant, and how to open it.
struct ObjectDatabaseConfiguration {
    std::optional<std::filesystem::path> fileURL; ///< Absent when nobody knows the place: it will not open.
    Foundation::SecretBytes encryptionKey;        ///< 64 bytes.
    bool readOnly = false;
    std::uint64_t schemaVersion;
    MigrationBlock migrationBlock; ///< Run once, when the file was written with an earlier schema version.
};

} // namespace Platform
