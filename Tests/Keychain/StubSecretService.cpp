#include "Tests/Keychain/StubSecretService.h"

namespace {

constexpr ObjectOnBus::Description secrets{.busName = "org.freedesktop.secrets",
                                           .path = "/org/freedesktop/secrets",
                                           .interfaceName = "org.freedesktop.Secret.Service",
                                           .members = R"(
    <method name='OpenSession'><arg type='s' direction='in'/><arg type='v' direction='in'/>
        <arg type='v' direction='out'/><arg type='o' direction='out'/></method>
    <method name='SearchItems'><arg type='a{ss}' direction='in'/>
        <arg type='ao' direction='out'/><arg type='ao' direction='out'/></method>)"};

} // namespace

StubSecretService::StubSecretService(std::string const& address, Manner manner)
    : manner(manner),
      object(address, secrets,
             [this](std::string_view, GVariant*, GDBusMethodInvocation* invocation) { answer(invocation); }) {
}

void StubSecretService::answer(GDBusMethodInvocation* invocation) const {
    switch (manner) {
    case Manner::denies:
        g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED,
                                                      "not you");
        return;
    case Manner::failsOddly:
        g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Broken", "out of order");
        return;
    case Manner::diesOnCall: object.leave(); break;
    case Manner::staysSilent: break;
    }
    g_object_unref(invocation);
}
