// Measures the sealed database, or a bare SQLite file that synchronises as strictly: the median time of
// opening and reading ten objects, or of changing one of them.
//
// Usage: quillora_bench_database_operations sealed|bare read|upsert FOLDER TIMES

#include "Platform/Clock/FixedClock.h"
#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Platform::PersistedObject;

constexpr int objectCount = 10;

void require(bool holds, std::string_view what) {
    if (holds) return;
    std::fprintf(stderr, "quillora_bench_database_operations: %.*s\n", static_cast<int>(what.size()),
                 what.data());
    std::exit(1);
}

/// Both sides do the same two things.
struct Subject {
    std::function<void()> read;
    std::function<void(int number, std::string const& name)> upsert;
};

class Sealed {
public:
    explicit Sealed(std::string const& folder)
        : engine(folder, std::make_shared<Platform::FixedClock>(Foundation::Date{.secondsSince1970 = 0})),
          configuration{.fileURL = folder + "/sealed.realm",
                        .encryptionKey = Foundation::SecretBytes::filledBy(64, [](auto) {}),
                        .readOnly = false,
                        .schemaVersion = 1,
                        .migrationBlock = {}} {}

    void read() {
        auto const database = engine.open(configuration);
        require(database && (*database)->objects("Person")->size() == objectCount, "ten objects are read");
    }
    void upsert(int number, std::string const& name) {
        PersistedObject const object{
            .typeName = "Person",
            .primaryKey = std::to_string(number),
            .properties = {{.name = "name", .value = name}, {.name = "isEnabled", .value = true}}};
        auto const database = engine.open(configuration);
        auto const add = [&](Platform::ObjectTransaction& transaction) { transaction.add(object); };
        require(database && (*database)->write(add).has_value(), "an object is written");
    }

private:
    Platform::SealedObjectDatabaseEngine engine;
    Platform::ObjectDatabaseConfiguration configuration;
};

class Bare {
public:
    explicit Bare(std::string const& folder) : file(folder + "/bare.sqlite") {
        run(opened(),
            "CREATE TABLE IF NOT EXISTS person(key TEXT PRIMARY KEY, name TEXT, isEnabled INTEGER)");
    }

    void read() {
        int count = 0;
        auto const counting = [](void* counter, int, char**, char**) {
            return ++*static_cast<int*>(counter), 0;
        };
        auto* connection = opened();
        sqlite3_exec(connection, "SELECT * FROM person ORDER BY rowid", counting, &count, nullptr);
        sqlite3_close(connection);
        require(count == objectCount, "ten rows are read");
    }
    void upsert(int number, std::string const& name) {
        auto const key = std::to_string(number);
        run(opened(), "INSERT INTO person VALUES('" + key + "', '" + name +
                          "', 1) ON CONFLICT DO UPDATE SET name = excluded.name");
    }

private:
    // For each operation a connection of its own, as the database is used.
    sqlite3* opened() {
        sqlite3* connection = nullptr;
        require(sqlite3_open(file.c_str(), &connection) == SQLITE_OK, "the bare file opens");
        // The default journal, and as strict as the sealed file: the name is synced too.
        sqlite3_exec(connection, "PRAGMA synchronous = EXTRA", nullptr, nullptr, nullptr);
        return connection;
    }
    static void run(sqlite3* connection, std::string const& statement) {
        require(sqlite3_exec(connection, statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK,
                statement);
        sqlite3_close(connection);
    }

    std::string file;
};

Subject subject(std::string_view kind, std::string const& folder) {
    auto const of = [](auto made) {
        return Subject{.read = [made] { made->read(); },
                       .upsert = [made](int number, std::string const& name) { made->upsert(number, name); }};
    };
    if (kind == "sealed") return of(std::make_shared<Sealed>(folder));
    return of(std::make_shared<Bare>(folder));
}

} // namespace

int main(int count, char** arguments) {
    require(count == 5, "usage: quillora_bench_database_operations sealed|bare read|upsert FOLDER TIMES");
    auto const measured = subject(arguments[1], arguments[3]);
    for (int number = 0; number < objectCount; ++number)
        measured.upsert(number, "first");

    std::string_view const operation = arguments[2];
    std::vector<double> times;
    for (int time = 0; time < std::atoi(arguments[4]); ++time) {
        auto const start = std::chrono::steady_clock::now();
        if (operation == "read")
            measured.read();
        else
            measured.upsert(time % objectCount, "changed " + std::to_string(time));
        times.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    std::ranges::sort(times);
    std::printf("%.1f us\n", times[times.size() / 2]);
}
