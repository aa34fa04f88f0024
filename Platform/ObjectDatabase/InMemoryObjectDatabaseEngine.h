#pragma once

#include "Platform/ObjectDatabase/ObjectDatabaseEngine.h"

#include <cstdint>
#include <map>
#include <vector>

namespace Platform {

/// Databases that live in this object: for tests, and for previews that must leave nothing behind. It keeps
/// the history of what was asked of it, and may be told to fail.
class InMemoryObjectDatabaseEngine final : public ObjectDatabaseEngine {
public:
    /// One operation on the database at a path, whether it succeeded or not.
    struct Operation {
        enum class Kind : std::uint8_t { open, deleteFiles, write, read };
        Kind kind;
        std::optional<std::filesystem::path> fileURL;
        bool succeeded;

        bool operator==(Operation const&) const = default;
    };

    /// Without a folder there is no place for databases.
    explicit InMemoryObjectDatabaseEngine(std::optional<std::filesystem::path> folder = "/data/Quillora");

    /// The next so many openings fail with this description.
    void failsToOpen(std::size_t times, std::string description);
    /// From now on deleting fails with this description.
    void failsToDelete(std::string description);
    /// From now on write transactions change nothing and fail with this description.
    void failsToWrite(std::string description);
    /// From now on reading from an open database fails with this description.
    void failsToRead(std::string description);

    [[nodiscard]] std::vector<Operation> history() const;
    /// The objects that the database at this path holds, of every type; none when there is no database.
    [[nodiscard]] std::vector<PersistedObject> content(std::filesystem::path const& fileURL) const;
    [[nodiscard]] bool exists(std::filesystem::path const& fileURL) const;
    /// Puts a database there, without a trace in the history.
    void place(std::filesystem::path const& fileURL, Foundation::SecretBytes encryptionKey,
               std::uint64_t schemaVersion, std::vector<PersistedObject> objects);

    [[nodiscard]] std::optional<std::filesystem::path> defaultFileURL() const override;
    [[nodiscard]] std::expected<std::shared_ptr<ObjectDatabase>, ObjectDatabaseError>
    open(ObjectDatabaseConfiguration const& configuration) override;
    std::expected<bool, ObjectDatabaseError>
    deleteFiles(ObjectDatabaseConfiguration const& configuration) override;

private:
    class Database;
    class Transaction;
    struct File {
        Foundation::SecretBytes encryptionKey;
        std::uint64_t schemaVersion;
        std::vector<PersistedObject> objects;
    };
    // What this object and the databases that it opened share: they may outlive it.
    struct State {
        std::map<std::filesystem::path, File> files;
        std::vector<Operation> operations;
        std::optional<std::string> deleteFailure;
        std::optional<std::string> writeFailure;
        std::optional<std::string> readFailure;
    };

    std::optional<ObjectDatabaseError> openFailure(ObjectDatabaseConfiguration const& configuration);

    std::optional<std::filesystem::path> folder;
    std::size_t openFailuresLeft = 0;
    std::string openFailureDescription;
    std::shared_ptr<State> state = std::make_shared<State>();
};

} // namespace Platform
