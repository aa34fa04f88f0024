#include "Platform/ObjectDatabase/MemoryDatabase.h"

#include "Platform/ObjectDatabase/SQLiteStatement.h"

#include <bit>
#include <cstring>
#include <new>
#include <stdexcept>
#include <type_traits>

namespace Platform {
namespace {

// An instant is kept as the bits of its float: a column of floats has no place for a NaN.
// Small pages, since the whole is written each time.
constexpr char const* schema = R"(
    PRAGMA page_size = 1024;
    CREATE TABLE version(number INTEGER NOT NULL);
    CREATE TABLE object(
        row INTEGER PRIMARY KEY,
        typeName TEXT NOT NULL,
        primaryKey TEXT NOT NULL,
        UNIQUE(typeName, primaryKey));
    CREATE TABLE property(
        object INTEGER NOT NULL,
        name TEXT NOT NULL,
        position INTEGER NOT NULL,
        kind INTEGER NOT NULL,
        value NOT NULL,
        PRIMARY KEY(object, position),
        UNIQUE(object, name)) WITHOUT ROWID;
)";

constexpr std::string_view selection =
    "SELECT object.row, object.typeName, object.primaryKey, property.name, property.kind, property.value "
    "FROM object LEFT JOIN property ON property.object = object.row ";

enum class ValueKind : std::uint8_t { text = 0, boolean = 1, date = 2 };

sqlite3* opened() {
    sqlite3* made = nullptr;
    // One thread has it at a time: the library need not guard it.
    auto const flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY | SQLITE_OPEN_NOMUTEX;
    auto const code = sqlite3_open_v2(":memory:", &made, flags, nullptr);
    if (code == SQLITE_OK) return made;
    sqlite3_close(made);
    throw std::runtime_error(sqlite3_errstr(code));
}

PersistedProperty propertyIn(SQLiteStatement const& row) {
    auto const name = row.text(3);
    switch (static_cast<ValueKind>(row.integer(4))) {
    case ValueKind::text: return {.name = name, .value = row.text(5)};
    case ValueKind::boolean: return {.name = name, .value = row.integer(5) != 0};
    case ValueKind::date:
        return {.name = name,
                .value = Foundation::Date{.secondsSince1970 = std::bit_cast<double>(row.integer(5))}};
    }
    throw std::runtime_error("a property is of no kind that is known");
}

std::vector<PersistedObject> objectsIn(SQLiteStatement& rows) {
    std::vector<PersistedObject> found;
    std::optional<std::int64_t> current;
    while (rows.step()) {
        if (current != rows.integer(0)) {
            current = rows.integer(0);
            found.push_back({.typeName = rows.text(1), .primaryKey = rows.text(2), .properties = {}});
        }
        // An object without properties has one row, without a name.
        if (!rows.isNull(3)) found.back().properties.push_back(propertyIn(rows));
    }
    return found;
}

} // namespace

void MemoryDatabase::Closing::operator()(sqlite3* open) const {
    sqlite3_close(open);
}

MemoryDatabase::MemoryDatabase(std::uint64_t schemaVersion) : connection(opened()) {
    run(schema);
    SQLiteStatement(connection.get(), "INSERT INTO version VALUES(?)")
        .with(std::bit_cast<std::int64_t>(schemaVersion))
        .step();
}

MemoryDatabase::MemoryDatabase(std::span<std::byte const> image) : connection(opened()) {
    auto* copy = static_cast<unsigned char*>(sqlite3_malloc64(image.size() + 1));
    if (copy == nullptr) throw std::bad_alloc();
    if (!image.empty()) std::memcpy(copy, image.data(), image.size());
    auto const size = static_cast<sqlite3_int64>(image.size());
    // The connection owns the copy from here on, also when the call fails.
    auto const code = sqlite3_deserialize(connection.get(), "main", copy, size, size,
                                          SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
    if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errstr(code));
    static_cast<void>(schemaVersion());
}

std::vector<std::byte> MemoryDatabase::image() const {
    struct Freeing {
        void operator()(unsigned char* start) const { sqlite3_free(start); }
    };
    sqlite3_int64 size = 0;
    std::unique_ptr<unsigned char, Freeing> const copy(sqlite3_serialize(connection.get(), "main", &size, 0));
    if (!copy) throw std::bad_alloc();
    auto const* start = reinterpret_cast<std::byte const*>(copy.get());
    return {start, start + size};
}

std::uint64_t MemoryDatabase::schemaVersion() const {
    SQLiteStatement row(connection.get(), "SELECT number FROM version");
    if (!row.step()) throw std::runtime_error("the database does not tell its version");
    return std::bit_cast<std::uint64_t>(row.integer(0));
}

void MemoryDatabase::setSchemaVersion(std::uint64_t version) {
    SQLiteStatement(connection.get(), "UPDATE version SET number = ?")
        .with(std::bit_cast<std::int64_t>(version))
        .step();
}

void MemoryDatabase::begin() {
    run("BEGIN");
}

void MemoryDatabase::commit() {
    run("COMMIT");
}

std::int64_t MemoryDatabase::changeCount() const {
    return sqlite3_total_changes64(connection.get());
}

void MemoryDatabase::add(PersistedObject const& object) {
    SQLiteStatement(connection.get(),
                    "INSERT INTO object(typeName, primaryKey) VALUES(?, ?) ON CONFLICT DO NOTHING")
        .with(object.typeName)
        .with(object.primaryKey)
        .step();
    auto const row = rowOf(object.typeName, object.primaryKey);
    if (!row) throw std::runtime_error("the database's tables contradict each other");
    for (auto const& property : object.properties)
        addProperty(*row, property);
}

void MemoryDatabase::addProperty(std::int64_t row, PersistedProperty const& property) {
    SQLiteStatement upsert(
        connection.get(),
        "INSERT INTO property(object, name, position, kind, value) VALUES(?1, ?2, "
        "(SELECT coalesce(max(position) + 1, 0) FROM property WHERE object = ?1), ?3, ?4) "
        "ON CONFLICT(object, name) DO UPDATE SET kind = excluded.kind, value = excluded.value "
        "WHERE kind IS NOT excluded.kind OR value IS NOT excluded.value");
    upsert.with(row).with(property.name);
    auto const bind = [&](auto const& value) {
        using Value = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, std::string>) {
            upsert.with(static_cast<std::int64_t>(ValueKind::text)).with(value);
        } else if constexpr (std::is_same_v<Value, bool>) {
            upsert.with(static_cast<std::int64_t>(ValueKind::boolean)).with(std::int64_t{value ? 1 : 0});
        } else {
            upsert.with(static_cast<std::int64_t>(ValueKind::date))
                .with(std::bit_cast<std::int64_t>(value.secondsSince1970));
        }
    };
    std::visit(bind, property.value);
    upsert.step();
}

void MemoryDatabase::remove(std::string_view typeName, std::string_view primaryKey) {
    auto const row = rowOf(typeName, primaryKey);
    if (!row) return;
    SQLiteStatement(connection.get(), "DELETE FROM property WHERE object = ?").with(*row).step();
    SQLiteStatement(connection.get(), "DELETE FROM object WHERE row = ?").with(*row).step();
}

std::vector<PersistedObject> MemoryDatabase::objects(std::string_view typeName) const {
    SQLiteStatement rows(connection.get(), std::string(selection) +
                                               "WHERE +typeName = ? ORDER BY object.row, property.position");
    rows.with(typeName);
    return objectsIn(rows);
}

std::optional<PersistedObject> MemoryDatabase::object(std::string_view typeName,
                                                      std::string_view primaryKey) const {
    SQLiteStatement rows(connection.get(),
                         std::string(selection) +
                             "WHERE typeName = ? AND primaryKey = ? ORDER BY property.position");
    rows.with(typeName).with(primaryKey);
    auto found = objectsIn(rows);
    if (found.empty()) return std::nullopt;
    return std::move(found.front());
}

std::optional<std::int64_t> MemoryDatabase::rowOf(std::string_view typeName,
                                                  std::string_view primaryKey) const {
    SQLiteStatement row(connection.get(), "SELECT row FROM object WHERE typeName = ? AND primaryKey = ?");
    row.with(typeName).with(primaryKey);
    if (!row.step()) return std::nullopt;
    return row.integer(0);
}

void MemoryDatabase::run(char const* statements) {
    if (sqlite3_exec(connection.get(), statements, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(connection.get()));
    }
}

} // namespace Platform
