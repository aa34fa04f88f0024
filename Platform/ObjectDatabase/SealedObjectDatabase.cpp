#include "Platform/ObjectDatabase/SealedObjectDatabase.h"

#include "Platform/ObjectDatabase/ObjectDatabaseDescriptions.h"

#include <exception>

namespace Platform {
namespace {

using Kind = ObjectDatabaseError::Kind;

std::unexpected<ObjectDatabaseError> failed(Kind kind) {
    return std::unexpected(ObjectDatabaseError{
        .kind = kind, .localizedDescription = std::string(ObjectDatabaseDescriptions::text(kind))});
}

} // namespace

std::expected<void, ObjectDatabaseError>
SealedObjectDatabase::write(std::function<void(ObjectTransaction&)> const& body) {
    if (!content) return std::unexpected(content.error());
    if (store.isReadOnly()) return failed(Kind::readOnly);
    try {
        auto changed = store.change(body);
        if (!changed) return std::unexpected(changed.error().error);
        content = *std::move(changed);
        return {};
    } catch (std::exception const&) {
        return failed(Kind::storageFailed);
    }
}

std::expected<std::optional<PersistedObject>, ObjectDatabaseError>
SealedObjectDatabase::object(std::string_view typeName, std::string_view primaryKey) const {
    if (!content) return std::unexpected(content.error());
    try {
        return content->object(typeName, primaryKey);
    } catch (std::exception const&) {
        return failed(Kind::storageFailed);
    }
}

std::expected<std::vector<PersistedObject>, ObjectDatabaseError>
SealedObjectDatabase::objects(std::string_view typeName) const {
    if (!content) return std::unexpected(content.error());
    try {
        return content->objects(typeName);
    } catch (std::exception const&) {
        return failed(Kind::storageFailed);
    }
}

} // namespace Platform
