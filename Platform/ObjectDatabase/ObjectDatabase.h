#pragma once

#include "Platform/ObjectDatabase/ObjectDatabaseError.h"
#include "Platform/ObjectDatabase/PersistedObject.h"

#include <expected>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace Platform {

/// What may be changed while a write transaction, or a migration, is under way. Only valid inside of it.
class ObjectTransaction {
public:
    virtual ~ObjectTransaction() = default;

    /// Inserts the object, or gives the existing one of that type and primary key those of its properties
    /// that differ. An existing property that `object` does not name stays.
    virtual void add(PersistedObject const& object) = 0;

    /// Removes the object; one that does not exist is no error.
    virtual void remove(std::string_view typeName, std::string_view primaryKey) = 0;

    /// The objects of a type as they stand in this transaction, in the order in which they were inserted.
    [[nodiscard]] virtual std::vector<PersistedObject> objects(std::string_view typeName) const = 0;
};

/// An open database: what it held when it was opened, and what was written through it since. For one thread.
class ObjectDatabase {
public:
    virtual ~ObjectDatabase() = default;

    /// Runs the body on what the database holds now, whoever wrote it, and keeps all of its changes or none.
    /// They are durable before success is reported. A body that throws changes nothing.
    virtual std::expected<void, ObjectDatabaseError>
    write(std::function<void(ObjectTransaction&)> const& body) = 0;

    /// The object with that primary key; absent when there is none.
    [[nodiscard]] virtual std::expected<std::optional<PersistedObject>, ObjectDatabaseError>
    object(std::string_view typeName, std::string_view primaryKey) const = 0;

    /// All objects of a type, in the order in which they were inserted.
    [[nodiscard]] virtual std::expected<std::vector<PersistedObject>, ObjectDatabaseError>
    objects(std::string_view typeName) const = 0;
};

} // namespace Platform
