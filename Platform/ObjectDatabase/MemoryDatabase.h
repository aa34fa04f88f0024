#pragma once

#include "Platform/ObjectDatabase/ObjectDatabase.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

struct sqlite3;

namespace Platform {

/// Persisted objects in a table database that lives in memory only. Throws std::runtime_error when that
/// cannot carry out what it is asked for.
class MemoryDatabase final : public ObjectTransaction {
public:
    /// An empty one.
    explicit MemoryDatabase(std::uint64_t schemaVersion);
    /// The one that `image` yielded. Throws when the bytes are no such image.
    explicit MemoryDatabase(std::span<std::byte const> image);
    MemoryDatabase(MemoryDatabase&&) = default;
    MemoryDatabase& operator=(MemoryDatabase&&) = default;
    ~MemoryDatabase() override = default;

    [[nodiscard]] std::vector<std::byte> image() const;

    [[nodiscard]] std::uint64_t schemaVersion() const;
    void setSchemaVersion(std::uint64_t version);

    /// What is changed between the two is kept as one; an instance that goes before `commit` takes it along.
    void begin();
    void commit();
    /// How many rows have been changed so far; grows with every real change.
    [[nodiscard]] std::int64_t changeCount() const;

    void add(PersistedObject const& object) override;
    void remove(std::string_view typeName, std::string_view primaryKey) override;
    [[nodiscard]] std::vector<PersistedObject> objects(std::string_view typeName) const override;
    [[nodiscard]] std::optional<PersistedObject> object(std::string_view typeName,
                                                        std::string_view primaryKey) const;

private:
    struct Closing {
        void operator()(sqlite3* connection) const;
    };

    void run(char const* statements);
    [[nodiscard]] std::optional<std::int64_t> rowOf(std::string_view typeName,
                                                    std::string_view primaryKey) const;
    void addProperty(std::int64_t row, PersistedProperty const& property);

    std::unique_ptr<sqlite3, Closing> connection;
};

} // namespace Platform
