#pragma once

#include "Platform/ObjectDatabase/ObjectDatabaseConfiguration.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Keys and objects that several tests use.
namespace DatabaseFixtures {

/// 64 bytes that count up from `first`.
inline Foundation::SecretBytes key(std::uint8_t first = 1, std::size_t size = 64) {
    return Foundation::SecretBytes::filledBy(size, [first](auto bytes) {
        for (std::size_t index = 0; index < bytes.size(); ++index)
            bytes[index] = std::byte(static_cast<std::uint8_t>(first + index));
    });
}

inline Platform::ObjectDatabaseConfiguration at(std::optional<std::filesystem::path> fileURL,
                                                std::uint64_t schemaVersion = 1) {
    return {.fileURL = std::move(fileURL),
            .encryptionKey = key(),
            .readOnly = false,
            .schemaVersion = schemaVersion,
            .migrationBlock = {}};
}

inline Platform::PersistedObject person(std::string const& primaryKey, std::string const& name,
                                        bool isEnabled = true, double registeredAt = 1763726400.25) {
    return {.typeName = "Person",
            .primaryKey = primaryKey,
            .properties = {
                {.name = "name", .value = name},
                {.name = "isEnabled", .value = isEnabled},
                {.name = "registeredAt", .value = Foundation::Date{.secondsSince1970 = registeredAt}}}};
}

/// A transaction that adds these objects.
inline auto adding(std::vector<Platform::PersistedObject> objects) {
    return [objects = std::move(objects)](Platform::ObjectTransaction& transaction) {
        for (auto const& object : objects)
            transaction.add(object);
    };
}

} // namespace DatabaseFixtures
