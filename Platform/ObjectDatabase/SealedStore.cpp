#include "Platform/ObjectDatabase/SealedStore.h"

#include "Platform/ObjectDatabase/ObjectDatabaseDescriptions.h"
#include "Platform/ObjectDatabase/Patience.h"
#include "Platform/ObjectDatabase/Seal.h"

#include <exception>
#include <utility>

namespace Platform {
namespace {

using Kind = ObjectDatabaseError::Kind;
using Stamp = std::optional<DatabaseFileStamp>;

std::unexpected<SealedStoreFailure> lasting(Kind kind, Stamp stamp) {
    return std::unexpected(SealedStoreFailure{
        .error = {.kind = kind, .localizedDescription = std::string(ObjectDatabaseDescriptions::text(kind))},
        .isLasting = true,
        .stamp = stamp,
    });
}

std::unexpected<SealedStoreFailure> failed(Kind kind, std::string const& reason, bool isLasting) {
    return std::unexpected(SealedStoreFailure{
        .error = {.kind = kind,
                  .localizedDescription =
                      std::string(ObjectDatabaseDescriptions::text(kind)) + ": " + reason},
        .isLasting = isLasting,
        .stamp = std::nullopt,
    });
}

std::unexpected<SealedStoreFailure> failedToRead(std::error_code error) {
    if (error == std::errc::not_supported) return lasting(Kind::foreignFile, std::nullopt);
    auto const isShortage = SystemFailure::isShortage(error);
    return failed(isShortage ? Kind::storageFailed : Kind::unreadable, SystemFailure::text(error),
                  !isShortage);
}

std::unexpected<SealedStoreFailure> failedToWrite(std::error_code error) {
    auto const kind = SystemFailure::isRefusal(error) ? Kind::readOnly : Kind::storageFailed;
    return failed(kind, SystemFailure::text(error), !SystemFailure::isShortage(error));
}

std::unexpected<SealedStoreFailure> failedToLock(std::error_code error) {
    if (error != std::errc::resource_unavailable_try_again) return failedToWrite(error);
    return std::unexpected(SealedStoreFailure{
        .error = {.kind = Kind::busy,
                  .localizedDescription = std::string(ObjectDatabaseDescriptions::text(Kind::busy))},
        .isLasting = false,
        .stamp = std::nullopt,
    });
}

ObjectDatabaseError unusablePlace(ObjectDatabaseError const& refusal) {
    auto const reason = std::string_view(refusal.localizedDescription)
                            .substr(ObjectDatabaseDescriptions::text(Kind::readOnly).size());
    return {.kind = Kind::unreadable,
            .localizedDescription =
                std::string(ObjectDatabaseDescriptions::text(Kind::unreadable)).append(reason)};
}

} // namespace

SealedStore::SealedStore(ObjectDatabaseConfiguration configuration, std::chrono::milliseconds patience)
    : configuration(std::move(configuration)),
      patience(patience),
      file(*this->configuration.fileURL) {}

SealedStore::Loaded SealedStore::load() {
    auto found = current();
    if (!found) return std::unexpected(found.error());
    if (found->due == Due::nothing) return std::move(found->content);
    if (configuration.readOnly) {
        return lasting(found->due == Due::creation ? Kind::unreadable : Kind::migrationFailed, found->stamp);
    }

    auto made = change([](ObjectTransaction&) {});
    if (made) return made;
    auto& failure = made.error();
    // A file that can be read, and only not be brought up to date just now, is not a file to give up.
    if (found->due == Due::migration) failure.isLasting = failure.stamp.has_value();
    // Nobody asked for anything to be written: it is the place that is of no use.
    else if (failure.error.kind == Kind::readOnly)
        failure.error = unusablePlace(failure.error);
    return made;
}

SealedStore::Loaded SealedStore::change(std::function<void(ObjectTransaction&)> const& body) {
    auto const held = lock();
    if (!held) return failedToLock(held.error());

    auto now = current();
    if (!now) return std::unexpected(now.error());
    auto& content = now->content;
    auto const before = content.changeCount();
    if (auto const refused = run(body, *now)) return std::unexpected(*refused);
    if (now->due == Due::nothing && content.changeCount() == before) return std::move(content);

    auto const sealed = Seal::seal(content.image(), configuration.encryptionKey, Seal::freshness());
    // Whoever deleted the lock file has let others in.
    if (!held->isStillAt(file.lockPath())) {
        return failedToLock(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    if (auto const error = Patience::outcomeOf(patience, [&] { return file.replace(sealed); })) {
        return failedToWrite(error);
    }
    return std::move(content);
}

std::optional<SealedStoreFailure> SealedStore::run(std::function<void(ObjectTransaction&)> const& body,
                                                   Current& current) const {
    auto& content = current.content;
    content.begin();
    if (current.due == Due::migration) {
        try {
            if (configuration.migrationBlock) configuration.migrationBlock(content, content.schemaVersion());
        } catch (std::exception const&) {
            return lasting(Kind::migrationFailed, current.stamp).error();
        }
        content.setSchemaVersion(configuration.schemaVersion);
    }
    try {
        body(content);
    } catch (std::exception const&) {
        return lasting(Kind::transactionRefused, std::nullopt).error();
    }
    content.commit();
    return std::nullopt;
}

std::expected<SealedStore::Current, SealedStoreFailure> SealedStore::current() {
    auto const content = Patience::outcomeOf(patience, [this] { return file.read(); });
    if (!content) return failedToRead(content.error());
    // An empty file is what a system leaves that stopped before the first writing: a new database.
    if (!content->has_value() || (*content)->bytes.empty()) {
        return Current{.content = MemoryDatabase(configuration.schemaVersion),
                       .due = Due::creation,
                       .stamp = std::nullopt};
    }
    return decoded(**content);
}

std::expected<SealedStore::Current, SealedStoreFailure>
SealedStore::decoded(DatabaseFileContent const& content) const {
    auto const image = Seal::open(content.bytes, configuration.encryptionKey);
    if (!image) return lasting(image.error(), content.stamp);
    std::optional<MemoryDatabase> made;
    try {
        made.emplace(*image);
    } catch (std::runtime_error const&) {
        // Sealed with this key, and yet no database: only another program can have done that.
        return lasting(Kind::foreignFile, content.stamp);
    }

    auto const version = made->schemaVersion();
    if (version > configuration.schemaVersion) return lasting(Kind::schemaIsNewer, content.stamp);
    return Current{.content = std::move(*made),
                   .due = version < configuration.schemaVersion ? Due::migration : Due::nothing,
                   .stamp = content.stamp};
}

std::expected<DatabaseLock, std::error_code> SealedStore::lock() {
    if (auto const error = Patience::outcomeOf(patience, [this] { return file.makeFolder(); })) {
        return std::unexpected(error);
    }
    return Patience::outcomeOf(patience, [this] { return DatabaseLock::take(file.lockPath()); });
}

} // namespace Platform
