#pragma once

#include <gio/gio.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

/// Something on the bus that has the name of a secret service, and bad manners.
class StubSecretService {
public:
    enum class Manner : std::uint8_t {
        denies,      ///< Answers every call with "access denied".
        staysSilent, ///< Takes every call and never answers.
        diesOnCall,  ///< Leaves the bus at the first call.
        failsOddly,  ///< Answers every call with an error of its own.
    };

    StubSecretService(std::string address, Manner manner);
    ~StubSecretService();
    StubSecretService(StubSecretService const&) = delete;
    StubSecretService& operator=(StubSecretService const&) = delete;

private:
    void serve(std::string const& address);
    static void called(GDBusConnection* connection, gchar const* sender, gchar const* path,
                       gchar const* interface, gchar const* method, GVariant* arguments,
                       GDBusMethodInvocation* invocation, gpointer self);

    Manner manner;
    GMainContext* context;
    GMainLoop* loop;
    GDBusConnection* connection = nullptr;
    std::mutex mutex;
    std::condition_variable ready;
    bool isReady = false;
    std::thread server; // Last: it uses everything above.
};
