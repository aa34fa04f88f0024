#pragma once

#include "Platform/ObjectDatabase/ObjectDatabaseConfiguration.h"

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>

namespace Platform {

/// Opens encrypted object databases, and takes their files away. No operation throws.
class ObjectDatabaseEngine {
public:
    virtual ~ObjectDatabaseEngine() = default;

    /// The file that a database without a name of its own would have; its folder is the place for databases.
    /// Absent when the system tells no such place.
    [[nodiscard]] virtual std::optional<std::filesystem::path> defaultFileURL() const = 0;

    /// Opens the database, makes it when there is none, and migrates it when its schema is earlier. Fails
    /// only for a reason that stays: the key, the file's content, the schema, the place. What passes by
    /// itself (a lock, a full disk, too many open files) is waited out for a while; then the database is
    /// yielded all the same, and its operations fail with the reason.
    [[nodiscard]] virtual std::expected<std::shared_ptr<ObjectDatabase>, ObjectDatabaseError>
    open(ObjectDatabaseConfiguration const& configuration) = 0;

    /// Takes the database's file and its companions away; the key stays. Yields whether there was a file.
    virtual std::expected<bool, ObjectDatabaseError>
    deleteFiles(ObjectDatabaseConfiguration const& configuration) = 0;
};

} // namespace Platform
