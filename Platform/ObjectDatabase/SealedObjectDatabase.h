#pragma once

#include "Platform/ObjectDatabase/SealedStore.h"

namespace Platform {

/// An open sealed database; or one that could not be read just now, whose operations say why.
class SealedObjectDatabase final : public ObjectDatabase {
public:
    SealedObjectDatabase(SealedStore store, std::expected<MemoryDatabase, ObjectDatabaseError> content)
        : store(std::move(store)),
          content(std::move(content)) {}

    std::expected<void, ObjectDatabaseError>
    write(std::function<void(ObjectTransaction&)> const& body) override;
    [[nodiscard]] std::expected<std::optional<PersistedObject>, ObjectDatabaseError>
    object(std::string_view typeName, std::string_view primaryKey) const override;
    [[nodiscard]] std::expected<std::vector<PersistedObject>, ObjectDatabaseError>
    objects(std::string_view typeName) const override;

private:
    SealedStore store;
    std::expected<MemoryDatabase, ObjectDatabaseError> content;
};

} // namespace Platform
