#include "Platform/ObjectDatabase/InMemoryObjectDatabaseEngine.h"

#include "Platform/ObjectDatabase/ObjectDatabaseDescriptions.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Platform {
namespace {

using std::filesystem::path;
using Kind = ObjectDatabaseError::Kind;

ObjectDatabaseError failure(Kind kind) {
    return {.kind = kind, .localizedDescription = std::string(ObjectDatabaseDescriptions::text(kind))};
}

auto find(auto& objects, std::string_view typeName, std::string_view primaryKey) {
    return std::ranges::find_if(objects, [&](PersistedObject const& object) {
        return object.typeName == typeName && object.primaryKey == primaryKey;
    });
}

std::vector<PersistedObject> ofType(std::vector<PersistedObject> const& objects, std::string_view typeName) {
    std::vector<PersistedObject> found;
    std::ranges::copy_if(objects, std::back_inserter(found),
                         [&](auto const& object) { return object.typeName == typeName; });
    return found;
}

} // namespace

class InMemoryObjectDatabaseEngine::Transaction final : public ObjectTransaction {
public:
    explicit Transaction(std::vector<PersistedObject> objects) : changed(std::move(objects)) {}

    void add(PersistedObject const& object) override {
        auto const existing = find(changed, object.typeName, object.primaryKey);
        if (existing == changed.end()) {
            changed.push_back(object);
            return;
        }
        for (auto const& property : object.properties) {
            auto const place =
                std::ranges::find(existing->properties, property.name, &PersistedProperty::name);
            if (place == existing->properties.end())
                existing->properties.push_back(property);
            else
                *place = property;
        }
    }

    void remove(std::string_view typeName, std::string_view primaryKey) override {
        auto const existing = find(changed, typeName, primaryKey);
        if (existing != changed.end()) changed.erase(existing);
    }

    [[nodiscard]] std::vector<PersistedObject> objects(std::string_view typeName) const override {
        return ofType(changed, typeName);
    }

    [[nodiscard]] std::vector<PersistedObject> const& result() const { return changed; }

private:
    std::vector<PersistedObject> changed;
};

class InMemoryObjectDatabaseEngine::Database final : public ObjectDatabase {
public:
    Database(std::shared_ptr<State> state, path fileURL, bool readOnly)
        : state(std::move(state)),
          fileURL(std::move(fileURL)),
          readOnly(readOnly) {}

    std::expected<void, ObjectDatabaseError>
    write(std::function<void(ObjectTransaction&)> const& body) override {
        auto const failed = changed(body);
        state->operations.push_back(
            {.kind = Operation::Kind::write, .fileURL = fileURL, .succeeded = !failed.has_value()});
        if (failed) return std::unexpected(*failed);
        return {};
    }

    [[nodiscard]] std::expected<std::optional<PersistedObject>, ObjectDatabaseError>
    object(std::string_view typeName, std::string_view primaryKey) const override {
        if (auto const failed = readFailure()) return std::unexpected(*failed);
        auto const& objects = state->files[fileURL].objects;
        auto const found = find(objects, typeName, primaryKey);
        if (found == objects.end()) return std::nullopt;
        return *found;
    }

    [[nodiscard]] std::expected<std::vector<PersistedObject>, ObjectDatabaseError>
    objects(std::string_view typeName) const override {
        if (auto const failed = readFailure()) return std::unexpected(*failed);
        return ofType(state->files[fileURL].objects, typeName);
    }

private:
    std::optional<ObjectDatabaseError> changed(std::function<void(ObjectTransaction&)> const& body) {
        if (readOnly) return failure(Kind::readOnly);
        if (state->writeFailure) {
            return ObjectDatabaseError{.kind = Kind::storageFailed,
                                       .localizedDescription = *state->writeFailure};
        }
        Transaction transaction(state->files[fileURL].objects);
        try {
            body(transaction);
        } catch (std::exception const&) {
            return failure(Kind::transactionRefused);
        }
        state->files[fileURL].objects = transaction.result();
        return std::nullopt;
    }

    [[nodiscard]] std::optional<ObjectDatabaseError> readFailure() const {
        auto const failed = state->readFailure;
        state->operations.push_back(
            {.kind = Operation::Kind::read, .fileURL = fileURL, .succeeded = !failed.has_value()});
        if (!failed) return std::nullopt;
        return ObjectDatabaseError{.kind = Kind::storageFailed, .localizedDescription = *failed};
    }

    std::shared_ptr<State> state;
    path fileURL;
    bool readOnly;
};

InMemoryObjectDatabaseEngine::InMemoryObjectDatabaseEngine(std::optional<path> folder)
    : folder(std::move(folder)) {}

void InMemoryObjectDatabaseEngine::failsToOpen(std::size_t times, std::string description) {
    openFailuresLeft = times;
    openFailureDescription = std::move(description);
}

void InMemoryObjectDatabaseEngine::failsToDelete(std::string description) {
    state->deleteFailure = std::move(description);
}

void InMemoryObjectDatabaseEngine::failsToWrite(std::string description) {
    state->writeFailure = std::move(description);
}

void InMemoryObjectDatabaseEngine::failsToRead(std::string description) {
    state->readFailure = std::move(description);
}

std::vector<InMemoryObjectDatabaseEngine::Operation> InMemoryObjectDatabaseEngine::history() const {
    return state->operations;
}

std::vector<PersistedObject> InMemoryObjectDatabaseEngine::content(path const& fileURL) const {
    auto const file = state->files.find(fileURL);
    if (file == state->files.end()) return {};
    return file->second.objects;
}

bool InMemoryObjectDatabaseEngine::exists(path const& fileURL) const {
    return state->files.contains(fileURL);
}

void InMemoryObjectDatabaseEngine::place(path const& fileURL, Foundation::SecretBytes encryptionKey,
                                         std::uint64_t schemaVersion, std::vector<PersistedObject> objects) {
    state->files.insert_or_assign(fileURL, File{.encryptionKey = std::move(encryptionKey),
                                                .schemaVersion = schemaVersion,
                                                .objects = std::move(objects)});
}

std::optional<path> InMemoryObjectDatabaseEngine::defaultFileURL() const {
    if (!folder) return std::nullopt;
    return *folder / "default.realm";
}

std::expected<std::shared_ptr<ObjectDatabase>, ObjectDatabaseError>
InMemoryObjectDatabaseEngine::open(ObjectDatabaseConfiguration const& configuration) {
    auto const failed = openFailure(configuration);
    state->operations.push_back(
        {.kind = Operation::Kind::open, .fileURL = configuration.fileURL, .succeeded = !failed.has_value()});
    if (failed) return std::unexpected(*failed);
    return std::make_shared<Database>(state, *configuration.fileURL, configuration.readOnly);
}

std::optional<ObjectDatabaseError>
InMemoryObjectDatabaseEngine::openFailure(ObjectDatabaseConfiguration const& configuration) {
    if (openFailuresLeft > 0) {
        --openFailuresLeft;
        return ObjectDatabaseError{.kind = Kind::wrongKeyOrDamaged,
                                   .localizedDescription = openFailureDescription};
    }
    if (!configuration.fileURL) return failure(Kind::noLocation);
    if (configuration.encryptionKey.size() != 64) return failure(Kind::keyLength);

    auto const [place, isNew] =
        state->files.try_emplace(*configuration.fileURL, File{.encryptionKey = configuration.encryptionKey,
                                                              .schemaVersion = configuration.schemaVersion,
                                                              .objects = {}});
    auto& file = place->second;
    if (isNew || (file.encryptionKey == configuration.encryptionKey &&
                  file.schemaVersion == configuration.schemaVersion)) {
        return std::nullopt;
    }
    if (file.encryptionKey != configuration.encryptionKey) return failure(Kind::wrongKeyOrDamaged);
    if (file.schemaVersion > configuration.schemaVersion) return failure(Kind::schemaIsNewer);
    Transaction migration(file.objects);
    try {
        configuration.migrationBlock(migration, file.schemaVersion);
    } catch (std::exception const&) {
        return failure(Kind::migrationFailed);
    }
    file.objects = migration.result();
    file.schemaVersion = configuration.schemaVersion;
    return std::nullopt;
}

std::expected<bool, ObjectDatabaseError>
InMemoryObjectDatabaseEngine::deleteFiles(ObjectDatabaseConfiguration const& configuration) {
    auto const failed = state->deleteFailure;
    state->operations.push_back({.kind = Operation::Kind::deleteFiles,
                                 .fileURL = configuration.fileURL,
                                 .succeeded = !failed.has_value()});
    if (failed) {
        return std::unexpected(
            ObjectDatabaseError{.kind = Kind::quarantineFailed, .localizedDescription = *failed});
    }
    return configuration.fileURL && state->files.erase(*configuration.fileURL) > 0;
}

} // namespace Platform
