#include "Tests/Face/StubPortal.h"

namespace {

constexpr ObjectOnBus::Description settings{.busName = "org.freedesktop.portal.Desktop",
                                            .path = "/org/freedesktop/portal/desktop",
                                            .interfaceName = "org.freedesktop.portal.Settings",
                                            .members = R"(
    <method name='Read'><arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='v' direction='out'/></method>
    <signal name='SettingChanged'><arg type='s'/><arg type='s'/><arg type='v'/></signal>)"};

} // namespace

StubPortal::StubPortal(std::string const& address, Manner manner)
    : manner(manner),
      object(address, settings,
             [this](std::string_view, GVariant* arguments, GDBusMethodInvocation* invocation) {
                 read(arguments, invocation);
             }) {}

void StubPortal::set(std::string const& key, std::string const& value) {
    std::scoped_lock const lock(mutex);
    values[key] = value;
}

void StubPortal::announce(std::string const& space, std::string const& key) {
    object.emit("SettingChanged",
                g_variant_new("(ssv)", space.c_str(), key.c_str(), g_variant_new_uint32(1)));
}

void StubPortal::read(GVariant* arguments, GDBusMethodInvocation* invocation) {
    ++readCount;
    if (manner == Manner::staysSilent) {
        g_object_unref(invocation);
        return;
    }
    char const* space = nullptr;
    char const* key = nullptr;
    g_variant_get(arguments, "(&s&s)", &space, &key);
    std::scoped_lock const lock(mutex);
    // Keys of the appearance's own namespace are given without it.
    bool const isAppearance = std::string_view(space) == "org.freedesktop.appearance";
    auto const value = values.find(isAppearance ? key : std::string(space) + " " + key);
    if (value == values.end()) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.portal.Error.NotFound",
                                                   "Requested setting not found");
        return;
    }
    auto* parsed = g_variant_parse(nullptr, value->second.c_str(), nullptr, nullptr, nullptr);
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(v)", parsed));
    g_variant_unref(parsed);
}
