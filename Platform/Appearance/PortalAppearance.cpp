#include "Platform/Appearance/PortalAppearance.h"

#include "Platform/Appearance/GObjectHandles.h"
#include "Platform/Appearance/PortalSettings.h"

#include <algorithm>
#include <mutex>

namespace Platform {
namespace {

using GObjectHandles::Owned;
using Clock = std::chrono::steady_clock;

/// A main context of our own: a wait on it can be bounded, and serves nobody else's events meanwhile.
class PrivateContext {
public:
    PrivateContext() : context(g_main_context_new()) { g_main_context_push_thread_default(context); }
    PrivateContext(PrivateContext const&) = delete;
    PrivateContext& operator=(PrivateContext const&) = delete;
    ~PrivateContext() {
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    }

    void cancelAfter(std::chrono::milliseconds delay, GCancellable* cancellable) {
        auto* source = g_timeout_source_new(static_cast<guint>(delay.count()));
        g_source_set_callback(
            source,
            [](gpointer target) -> gboolean {
                g_cancellable_cancel(static_cast<GCancellable*>(target));
                return G_SOURCE_REMOVE;
            },
            g_object_ref(cancellable), g_object_unref);
        g_source_attach(source, context);
        g_source_unref(source);
    }

    void runUntil(Owned<GAsyncResult> const& result) {
        while (!result)
            g_main_context_iteration(context, TRUE);
    }

private:
    GMainContext* context;
};

void arrived(GObject*, GAsyncResult* result, gpointer slot) {
    static_cast<Owned<GAsyncResult>*>(slot)->reset(G_ASYNC_RESULT(g_object_ref(result)));
}

/// The innermost value: portals wrap theirs once or twice more than the interface tells.
Owned<GVariant> unwrapped(Owned<GVariant> value) {
    while (value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) {
        value.reset(g_variant_get_variant(value.get()));
    }
    return value;
}

bool isChannel(double value) {
    return value >= 0.0 && value <= 1.0;
}

} // namespace

/// The connection, made at the first read and kept while the bus lives.
class PortalAppearance::Bus {
public:
    explicit Bus(std::optional<std::string> address) : address(std::move(address)) {}

    /// The value of a key of one namespace; null where nobody answers in time.
    Owned<GVariant> read(char const* key, char const* space = PortalSettings::appearance) {
        if (!address) return nullptr;
        PrivateContext context;
        Owned<GCancellable> const cancellable(g_cancellable_new());
        context.cancelAfter(patience, cancellable.get());

        auto const current = connected(context, cancellable.get());
        if (!current) return nullptr;
        Owned<GAsyncResult> called;
        g_dbus_connection_call(current.get(), PortalSettings::busName, PortalSettings::objectPath,
                               PortalSettings::interfaceName, "Read", g_variant_new("(ss)", space, key),
                               G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable.get(), arrived,
                               &called);
        context.runUntil(called);
        Owned<GVariant> const reply(g_dbus_connection_call_finish(current.get(), called.get(), nullptr));
        if (!reply) return nullptr;
        return unwrapped(Owned<GVariant>(g_variant_get_child_value(reply.get(), 0)));
    }

private:
    Owned<GDBusConnection> connected(PrivateContext& context, GCancellable* cancellable) {
        std::scoped_lock const lock(mutex);
        if (!connection || g_dbus_connection_is_closed(connection.get())) {
            Owned<GAsyncResult> opened;
            g_dbus_connection_new_for_address(address->c_str(), PortalSettings::connectionFlags, nullptr,
                                              cancellable, arrived, &opened);
            context.runUntil(opened);
            connection.reset(g_dbus_connection_new_for_address_finish(opened.get(), nullptr));
        }
        if (!connection) return nullptr;
        return Owned<GDBusConnection>(G_DBUS_CONNECTION(g_object_ref(connection.get())));
    }

    std::optional<std::string> address;
    std::mutex mutex;
    Owned<GDBusConnection> connection;
};

PortalAppearance::PortalAppearance(std::optional<std::string> busAddress)
    : bus(std::make_unique<Bus>(std::move(busAddress))) {}

PortalAppearance::~PortalAppearance() = default;

std::optional<ColorScheme> PortalAppearance::colorScheme() const {
    auto const value = bus->read("color-scheme");
    if (!value || !g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32)) return std::nullopt;
    constexpr guint32 prefersDark = 1;
    return g_variant_get_uint32(value.get()) == prefersDark ? ColorScheme::dark : ColorScheme::light;
}

std::optional<std::array<double, 3>> PortalAppearance::accentColor() const {
    auto const value = bus->read("accent-color");
    if (!value || !g_variant_is_of_type(value.get(), G_VARIANT_TYPE("(ddd)"))) return std::nullopt;
    std::array<double, 3> channels{};
    g_variant_get(value.get(), "(ddd)", &channels[0], &channels[1], &channels[2]);
    if (!std::ranges::all_of(channels, isChannel)) return std::nullopt;
    return channels;
}

std::optional<std::string> PortalAppearance::interfaceFont() const {
    auto const value = bus->read("font-name", PortalSettings::desktopInterface);
    if (!value || !g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING)) return std::nullopt;
    std::string font = g_variant_get_string(value.get(), nullptr);
    if (font.empty()) return std::nullopt;
    return font;
}

} // namespace Platform
