#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"

#include "Platform/ObjectDatabase/ObjectDatabaseDescriptions.h"
#include "Platform/ObjectDatabase/Patience.h"
#include "Platform/ObjectDatabase/Quarantine.h"
#include "Platform/ObjectDatabase/Seal.h"
#include "Platform/ObjectDatabase/SealedObjectDatabase.h"

#include <exception>
#include <utility>

namespace Platform {
namespace {

using std::filesystem::path;
using Kind = ObjectDatabaseError::Kind;

std::unexpected<ObjectDatabaseError> failed(Kind kind) {
    return std::unexpected(ObjectDatabaseError{
        .kind = kind, .localizedDescription = std::string(ObjectDatabaseDescriptions::text(kind))});
}

std::unexpected<ObjectDatabaseError> failedToMove(std::error_code error) {
    auto failure = failed(Kind::quarantineFailed);
    failure.error().localizedDescription += ": ";
    failure.error().localizedDescription += error == std::errc::resource_unavailable_try_again
                                                ? "another program keeps the database locked"
                                                : SystemFailure::text(error);
    return failure;
}

} // namespace

SealedObjectDatabaseEngine::SealedObjectDatabaseEngine(std::optional<path> dataHome,
                                                       std::shared_ptr<Clock const> clock,
                                                       std::chrono::milliseconds patience)
    : dataHome(std::move(dataHome)),
      clock(std::move(clock)),
      patience(patience) {}

std::optional<path> SealedObjectDatabaseEngine::defaultFileURL() const {
    if (!dataHome) return std::nullopt;
    return *dataHome / "Quillora" / "default.realm";
}

std::expected<std::shared_ptr<ObjectDatabase>, ObjectDatabaseError>
SealedObjectDatabaseEngine::open(ObjectDatabaseConfiguration const& configuration) {
    if (!configuration.fileURL) return failed(Kind::noLocation);
    if (configuration.encryptionKey.size() != Seal::keySize) return failed(Kind::keyLength);
    SealedStore store(configuration, patience);
    try {
        auto loaded = store.load();
        if (loaded) {
            remember(*configuration.fileURL, std::nullopt);
            return std::make_shared<SealedObjectDatabase>(std::move(store), *std::move(loaded));
        }
        auto const& failure = loaded.error();
        if (failure.isLasting) {
            remember(*configuration.fileURL, failure.stamp);
            return std::unexpected(failure.error);
        }
        return std::make_shared<SealedObjectDatabase>(std::move(store), std::unexpected(failure.error));
    } catch (std::exception const&) {
        // The cipher or the memory is at fault, not the file.
        auto const failure = failed(Kind::storageFailed);
        return std::make_shared<SealedObjectDatabase>(std::move(store), failure);
    }
}

std::expected<bool, ObjectDatabaseError>
SealedObjectDatabaseEngine::deleteFiles(ObjectDatabaseConfiguration const& configuration) {
    if (!configuration.fileURL) return failed(Kind::noLocation);
    try {
        return movedAway(*configuration.fileURL);
    } catch (std::exception const&) {
        return failed(Kind::quarantineFailed);
    }
}

std::expected<bool, ObjectDatabaseError> SealedObjectDatabaseEngine::movedAway(path const& location) {
    DatabaseFile const database(location);
    if (!database.stamp()) return false;
    auto const lock = Patience::outcomeOf(patience, [&] { return DatabaseLock::take(database.lockPath()); });
    if (!lock) return failedToMove(lock.error());

    auto const present = database.stamp();
    if (!present) return false;
    auto const unopened = this->unopened(location);
    if (unopened && *unopened != *present) return false;
    if (auto const error = Quarantine::moveAside(database, clock->now())) return failedToMove(error);
    remember(location, std::nullopt);
    return true;
}

std::optional<DatabaseFileStamp> SealedObjectDatabaseEngine::unopened(path const& location) const {
    std::scoped_lock const guard(mutex);
    auto const found = unopenedFiles.find(location);
    if (found == unopenedFiles.end()) return std::nullopt;
    return found->second;
}

void SealedObjectDatabaseEngine::remember(path const& location, std::optional<DatabaseFileStamp> stamp) {
    std::scoped_lock const guard(mutex);
    if (stamp)
        unopenedFiles.insert_or_assign(location, *stamp);
    else
        unopenedFiles.erase(location);
}

} // namespace Platform
