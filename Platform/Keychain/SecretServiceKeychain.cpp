#include "Platform/Keychain/SecretServiceKeychain.h"

#include "Platform/Keychain/CallDeadline.h"
#include "Platform/Keychain/SecretServiceHandles.h"

#include <algorithm>
#include <expected>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace Platform {
namespace {

using Foundation::SecretBytes;
using SecretServiceHandles::ErrorSlot;
using SecretServiceHandles::Owned;

constexpr auto schemaName = "com.zentorik.quillora.GenericPassword";

SecretSchema schemaWith(SecretSchemaFlags flags) {
    SecretSchema made{};
    made.name = schemaName;
    made.flags = flags;
    made.attributes[0] = {.name = "service", .type = SECRET_SCHEMA_ATTRIBUTE_STRING};
    made.attributes[1] = {.name = "account", .type = SECRET_SCHEMA_ATTRIBUTE_STRING};
    return made;
}

// Under which items are kept.
SecretSchema const* schema() {
    static auto const ours = schemaWith(SECRET_SCHEMA_NONE);
    return &ours;
}

// By which they are found, whatever schema they are kept under.
SecretSchema const* anySchema() {
    static auto const any = schemaWith(SECRET_SCHEMA_DONT_MATCH_NAME);
    return &any;
}

bool isOurs(Owned<SecretItem> const& item) {
    std::unique_ptr<char, decltype(&g_free)> const name(secret_item_get_schema_name(item.get()), g_free);
    return name != nullptr && std::string_view(name.get()) == schemaName;
}

bool isOpen(Owned<SecretItem> const& item) {
    return secret_item_get_locked(item.get()) == FALSE;
}

Owned<SecretValue> valueOf(SecretBytes const& bytes) {
    return Owned<SecretValue>(secret_value_new(reinterpret_cast<char const*>(bytes.bytes().data()),
                                               static_cast<gssize>(bytes.size()),
                                               "application/octet-stream"));
}

Owned<GHashTable> attributes(GenericPasswordIdentity const& identity) {
    return Owned<GHashTable>(secret_attributes_build(schema(), "service", identity.service.c_str(), "account",
                                                     identity.account.c_str(), nullptr));
}

/// What an error means. Null is a call that failed without telling why.
KeychainStatus statusOf(GError const* error, CallDeadline const& deadline) {
    if (error == nullptr || deadline.hasPassed()) return KeychainStatus::ioErr;
    if (g_error_matches(error, SECRET_ERROR, SECRET_ERROR_IS_LOCKED))
        return KeychainStatus::interactionNotAllowed;
    auto const isDenied = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED) ||
                          g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_AUTH_FAILED) ||
                          g_error_matches(error, G_IO_ERROR, G_IO_ERROR_PERMISSION_DENIED) ||
                          // Not by us, as the deadline has not passed: the person closed the window.
                          g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    return isDenied ? KeychainStatus::authFailed : KeychainStatus::ioErr;
}

/// One operation's connection to the service, made anew each time: a service may have been restarted since.
class Session {
public:
    Session(std::chrono::milliseconds limit, std::stop_token const& givenUp) : deadline(limit, givenUp) {
        Owned<GError> error;
        bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, deadline.get(), ErrorSlot(error)));
        if (!bus) return;
        // Otherwise the end of the bus would end this process too.
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
        auto const flags =
            static_cast<SecretServiceFlags>(SECRET_SERVICE_OPEN_SESSION | SECRET_SERVICE_LOAD_COLLECTIONS);
        service.reset(
            secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, flags, deadline.get(), ErrorSlot(error)));
        if (!service) failure = statusOf(error.get(), deadline);
    }

    /// Why there is no service; `success` where there is one.
    [[nodiscard]] KeychainStatus status() const { return service ? KeychainStatus::success : failure; }

    /// The items that are open, ours before those of other programs; at least one. Or why there is none to
    /// be had.
    std::expected<std::vector<Owned<SecretItem>>, KeychainStatus>
    items(GenericPasswordIdentity const& identity) {
        Owned<GError> error;
        GList* found = secret_service_search_sync(service.get(), anySchema(), attributes(identity).get(),
                                                  SECRET_SEARCH_ALL, deadline.get(), ErrorSlot(error));
        std::vector<Owned<SecretItem>> items;
        for (auto* place = found; place != nullptr; place = place->next)
            items.emplace_back(static_cast<SecretItem*>(place->data));
        g_list_free(found);
        if (error) return std::unexpected(statusOf(error.get(), deadline));

        if (items.empty()) return std::unexpected(absence());
        std::ranges::partition(items, isOurs);
        bool const isOursLocked = isOurs(items.front()) && std::ranges::none_of(items, [](auto const& item) {
                                      return isOurs(item) && isOpen(item);
                                  });
        std::erase_if(items, [](auto const& item) { return !isOpen(item); });
        if (isOursLocked || items.empty()) return std::unexpected(KeychainStatus::interactionNotAllowed);
        return items;
    }

    /// The item, or why there is none to be had.
    std::expected<Owned<SecretItem>, KeychainStatus> item(GenericPasswordIdentity const& identity) {
        auto found = items(identity);
        if (!found) return std::unexpected(found.error());
        return std::move(found->front());
    }

    std::expected<Owned<SecretValue>, KeychainStatus> value(SecretItem* item) {
        Owned<GError> error;
        auto const isLoaded = secret_item_load_secret_sync(item, deadline.get(), ErrorSlot(error));
        if (isLoaded == FALSE) return std::unexpected(statusOf(error.get(), deadline));
        Owned<SecretValue> loaded(secret_item_get_secret(item));
        if (!loaded) return std::unexpected(KeychainStatus::interactionNotAllowed);
        return loaded;
    }

    KeychainStatus remove(SecretItem* item) {
        Owned<GError> error;
        auto const isRemoved = secret_item_delete_sync(item, deadline.get(), ErrorSlot(error));
        return isRemoved != FALSE ? KeychainStatus::success : statusOf(error.get(), deadline);
    }

    KeychainStatus change(SecretItem* item, SecretBytes const& bytes) {
        Owned<GError> error;
        auto const isChanged =
            secret_item_set_secret_sync(item, valueOf(bytes).get(), deadline.get(), ErrorSlot(error));
        return isChanged != FALSE ? KeychainStatus::success : statusOf(error.get(), deadline);
    }

    /// Whether there is a collection for new items. An error is a status, as everywhere.
    std::expected<Owned<SecretCollection>, KeychainStatus> defaultCollection() {
        Owned<GError> error;
        Owned<SecretCollection> collection(
            secret_collection_for_alias_sync(service.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE,
                                             deadline.get(), ErrorSlot(error)));
        if (error) return std::unexpected(statusOf(error.get(), deadline));
        return collection;
    }

    KeychainStatus store(GenericPasswordIdentity const& identity, SecretBytes const& bytes,
                         std::chrono::milliseconds personsLimit) {
        auto const collection = defaultCollection();
        if (!collection) return collection.error();
        if (!*collection)
            deadline.extendTo(personsLimit);
        else if (secret_collection_get_locked(collection->get()) != FALSE) {
            return KeychainStatus::interactionNotAllowed;
        }

        Owned<GError> error;
        auto const value = valueOf(bytes);
        auto const label = "Quillora: " + identity.service;
        auto const isStored = secret_service_store_sync(service.get(), schema(), attributes(identity).get(),
                                                        SECRET_COLLECTION_DEFAULT, label.c_str(), value.get(),
                                                        deadline.get(), ErrorSlot(error));
        return isStored != FALSE ? KeychainStatus::success : statusOf(error.get(), deadline);
    }

private:
    // A service keeps the items of a locked collection to itself: finding none proves nothing then.
    KeychainStatus absence() {
        GList* collections = secret_service_get_collections(service.get());
        if (collections == nullptr) return KeychainStatus::ioErr;
        bool isAnyLocked = false;
        for (auto* place = collections; place != nullptr; place = place->next) {
            Owned<SecretCollection> const collection(static_cast<SecretCollection*>(place->data));
            isAnyLocked = isAnyLocked || secret_collection_get_locked(collection.get()) != FALSE;
        }
        g_list_free(collections);
        return isAnyLocked ? KeychainStatus::interactionNotAllowed : KeychainStatus::itemNotFound;
    }

    CallDeadline deadline;
    Owned<GDBusConnection> bus;
    Owned<SecretService> service;
    KeychainStatus failure = KeychainStatus::ioErr;
};

bool isText(SecretValue* value, std::string_view content) {
    std::string_view const type = secret_value_get_content_type(value);
    if (!type.starts_with("text/")) return false;
    auto const isControl = [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; };
    return g_utf8_validate(content.data(), static_cast<gssize>(content.size()), nullptr) != FALSE &&
           std::ranges::none_of(content, isControl);
}

std::optional<SecretBytes> bytesOf(SecretValue* value) {
    gsize length = 0;
    auto const* content = secret_value_get(value, &length);
    if (isText(value, {content, length})) return std::nullopt;
    return SecretBytes(std::as_bytes(std::span(content, length)));
}

GenericPasswordMatch match(Session& session, GenericPasswordIdentity const& identity) {
    if (session.status() != KeychainStatus::success)
        return {.status = session.status(), .data = std::nullopt};
    auto const item = session.item(identity);
    if (!item) return {.status = item.error(), .data = std::nullopt};
    auto const value = session.value(item->get());
    if (!value) return {.status = value.error(), .data = std::nullopt};
    return {.status = KeychainStatus::success, .data = bytesOf(value->get())};
}

} // namespace

GenericPasswordMatch SecretServiceKeychain::copyMatching(GenericPasswordIdentity const& identity) const {
    try {
        Session session(patience.answer, givenUp.get_token());
        return match(session, identity);
    } catch (...) {
        return {.status = KeychainStatus::ioErr, .data = std::nullopt};
    }
}

KeychainStatus SecretServiceKeychain::deleteMatching(GenericPasswordIdentity const& identity) {
    try {
        Session session(patience.answer, givenUp.get_token());
        if (session.status() != KeychainStatus::success) return session.status();
        auto const items = session.items(identity);
        if (!items) return items.error();
        // What another program put beside ours would be taken for it from now on.
        for (auto const& item : *items) {
            auto const removed = session.remove(item.get());
            if (removed != KeychainStatus::success) return removed;
        }
        return KeychainStatus::success;
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

KeychainStatus SecretServiceKeychain::add(GenericPasswordIdentity const& identity, SecretBytes const& value) {
    try {
        Session session(patience.answer, givenUp.get_token());
        if (session.status() != KeychainStatus::success) return session.status();
        auto const existing = session.item(identity);
        if (existing) return KeychainStatus::ioErr;
        if (existing.error() != KeychainStatus::itemNotFound) return existing.error();
        auto const stored = session.store(identity, value, patience.person);
        if (stored != KeychainStatus::success) return stored;
        // Believed only when it can be read back: some services drop what they cannot keep.
        auto const kept = match(session, identity);
        return kept.data == value ? KeychainStatus::success : KeychainStatus::ioErr;
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

KeychainStatus SecretServiceKeychain::update(GenericPasswordIdentity const& identity,
                                             SecretBytes const& value) {
    try {
        Session session(patience.answer, givenUp.get_token());
        if (session.status() != KeychainStatus::success) return session.status();
        auto const item = session.item(identity);
        if (!item) return item.error();
        auto const changed = session.change(item->get(), value);
        if (changed != KeychainStatus::success) return changed;
        auto const kept = match(session, identity);
        return kept.data == value ? KeychainStatus::success : KeychainStatus::ioErr;
    } catch (...) {
        return KeychainStatus::ioErr;
    }
}

bool SecretServiceKeychain::lacksDefaultCollection() const {
    try {
        Session session(patience.answer, givenUp.get_token());
        if (session.status() != KeychainStatus::success) return false;
        auto const collection = session.defaultCollection();
        return collection && !*collection;
    } catch (...) {
        return false;
    }
}

} // namespace Platform
