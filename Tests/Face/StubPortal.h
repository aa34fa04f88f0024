#pragma once

#include <gio/gio.h>

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>

/// A desktop portal of the test's own: answers `Read` on a thread of its own with the values it was given,
/// an error for any other key, or not at all.
class StubPortal {
public:
    enum class Manner : std::uint8_t { answers, staysSilent };

    /// Owns the portal's name on the bus once constructed.
    explicit StubPortal(std::string address, Manner manner = Manner::answers);
    ~StubPortal();
    StubPortal(StubPortal const&) = delete;
    StubPortal& operator=(StubPortal const&) = delete;

    /// `key` of the appearance's namespace, or another namespace, a blank and a key; `value` in GVariant's
    /// text form, such as "<uint32 1>"; answered as it stands inside the reply's variant.
    void set(std::string const& key, std::string const& value);

    /// Sends `SettingChanged` for a key of a namespace.
    void announce(std::string const& space, std::string const& key);

    [[nodiscard]] int reads() const { return readCount; }

private:
    void serve(std::string const& address);
    static void called(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const* method,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer data);

    Manner manner;
    std::mutex mutex;
    std::condition_variable ready;
    bool isReady = false;
    std::map<std::string, std::string> values;
    std::atomic<int> readCount = 0;
    GDBusConnection* connection = nullptr;
    GMainContext* context;
    GMainLoop* loop;
    std::thread server;
};
