#include "Tests/Keychain/PrivateKeyring.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace {

/// Throws with what went wrong: a test must not go on without its keyring.
void require(bool holds, GError* error, std::string const& what) {
    if (holds) return;
    throw std::runtime_error(what + ": " + (error != nullptr ? error->message : "no reason given"));
}

SecretService* openService() {
    GError* error = nullptr;
    auto* service = secret_service_open_sync(
        SECRET_TYPE_SERVICE, nullptr,
        static_cast<SecretServiceFlags>(SECRET_SERVICE_OPEN_SESSION | SECRET_SERVICE_LOAD_COLLECTIONS),
        nullptr, &error);
    require(service != nullptr, error, "the keyring cannot be reached");
    return service;
}

// Whether the daemon answers, and has its default collection in that state.
bool isServing(PrivateKeyring::Login login) {
    auto* service =
        secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr);
    if (service == nullptr) return false;
    auto* collection = secret_collection_for_alias_sync(service, SECRET_COLLECTION_DEFAULT,
                                                        SECRET_COLLECTION_NONE, nullptr, nullptr);
    auto const isLocked = collection != nullptr && secret_collection_get_locked(collection) != FALSE;
    auto const isThere = collection != nullptr;
    g_clear_object(&collection);
    g_object_unref(service);
    if (login == PrivateKeyring::Login::fresh) return !isThere;
    return isThere && isLocked == (login == PrivateKeyring::Login::locked);
}

} // namespace

PrivateBus::PrivateBus() : bus(g_test_dbus_new(G_TEST_DBUS_NONE)) {
    g_test_dbus_up(bus);
}

PrivateBus::~PrivateBus() {
    if (isUp) g_test_dbus_down(bus);
    g_object_unref(bus);
}

void PrivateBus::stop() {
    g_test_dbus_stop(bus);
    isUp = false;
}

PrivateKeyring::~PrivateKeyring() {
    if (daemon != nullptr) kill();
}

void PrivateKeyring::start(Login login) {
    // Now and then the daemon takes its name and then never answers; another one does.
    for (int attempt = 0; attempt < 3; ++attempt) {
        spawn(login);
        if (waitUntilServing(login)) return;
        kill();
    }
    throw std::runtime_error("the keyring daemon does not serve");
}

void PrivateKeyring::spawn(Login login) {
    auto* launcher = g_subprocess_launcher_new(
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                      G_SUBPROCESS_FLAGS_STDERR_SILENCE));
    auto const set = [&](char const* name, std::string const& value) {
        g_subprocess_launcher_setenv(launcher, name, value.c_str(), TRUE);
    };
    auto const folder = home.path().string();
    for (auto const* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "HOME"})
        set(name, folder);
    set("DBUS_SESSION_BUS_ADDRESS", bus.address());
    set("GSETTINGS_BACKEND", "memory");
    g_subprocess_launcher_unsetenv(launcher, "DISPLAY");
    g_subprocess_launcher_unsetenv(launcher, "GNOME_KEYRING_CONTROL");

    GError* error = nullptr;
    daemon = login == Login::unlocked
                 ? g_subprocess_launcher_spawn(launcher, &error, "gnome-keyring-daemon", "--foreground",
                                               "--unlock", "--components=secrets", nullptr)
                 : g_subprocess_launcher_spawn(launcher, &error, "gnome-keyring-daemon", "--foreground",
                                               "--components=secrets", nullptr);
    g_object_unref(launcher);
    require(daemon != nullptr, error, "the keyring daemon does not start");
    auto* password = g_subprocess_get_stdin_pipe(daemon);
    if (login == Login::unlocked) g_output_stream_write_all(password, "secret", 6, nullptr, nullptr, nullptr);
    g_output_stream_close(password, nullptr, nullptr);
}

bool PrivateKeyring::waitUntilServing(Login login) {
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < end) {
        if (isServing(login)) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

void PrivateKeyring::stop() {
    g_subprocess_send_signal(daemon, SIGTERM);
    g_subprocess_wait(daemon, nullptr, nullptr);
    g_clear_object(&daemon);
}

void PrivateKeyring::freeze() {
    g_subprocess_send_signal(daemon, SIGSTOP);
}

void PrivateKeyring::kill() {
    g_subprocess_force_exit(daemon);
    g_subprocess_wait(daemon, nullptr, nullptr);
    g_clear_object(&daemon);
}

void PrivateKeyring::lockCollections() {
    GError* error = nullptr;
    auto* service = openService();
    auto* collection = secret_collection_for_alias_sync(service, SECRET_COLLECTION_DEFAULT,
                                                        SECRET_COLLECTION_NONE, nullptr, &error);
    require(collection != nullptr, error, "the keyring has no default collection");
    auto* all = g_list_append(nullptr, collection);
    auto const locked = secret_service_lock_sync(service, all, nullptr, nullptr, &error);
    g_list_free_full(all, g_object_unref);
    g_object_unref(service);
    require(locked == 1, error, "the collection does not lock");
}

void PrivateKeyring::placeText(Platform::GenericPasswordIdentity const& identity, std::string const& text,
                               Schema kind) {
    SecretSchema schema{};
    schema.name = kind == Schema::another ? "org.example.Another" : "com.zentorik.quillora.GenericPassword";
    schema.attributes[0] = {.name = "service", .type = SECRET_SCHEMA_ATTRIBUTE_STRING};
    schema.attributes[1] = {.name = "account", .type = SECRET_SCHEMA_ATTRIBUTE_STRING};
    GError* error = nullptr;
    auto* service = openService();
    auto* attributes = secret_attributes_build(&schema, "service", identity.service.c_str(), "account",
                                               identity.account.c_str(), nullptr);
    auto* value = secret_value_new(text.c_str(), -1, "text/plain");
    auto const stored =
        secret_service_store_sync(service, kind == Schema::none ? nullptr : &schema, attributes,
                                  SECRET_COLLECTION_DEFAULT, "by hand", value, nullptr, &error);
    secret_value_unref(value);
    g_hash_table_unref(attributes);
    g_object_unref(service);
    require(stored != FALSE, error, "the text cannot be stored");
}
