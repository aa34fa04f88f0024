#include "Platform/Workspace/GIOWorkspace.h"

#include <gio/gio.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace Platform {

namespace {

struct Release {
    void operator()(gpointer object) const { g_object_unref(object); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GError* error) const { g_error_free(error); }
};
using Error = std::unique_ptr<GError, Release>;

void tell(Workspace::Done const& done, Error const& error) {
    if (done) done(error ? error->message : "");
}

// One application on its way to the person.
struct Activation {
    std::string identifier;
    Workspace::Done done;

    [[nodiscard]] std::string path() const {
        std::string text = "/" + identifier;
        std::ranges::replace(text, '.', '/');
        std::ranges::replace(text, '-', '_');
        return text;
    }
};

void activated(GObject* source, GAsyncResult* result, gpointer data) noexcept {
    std::unique_ptr<Activation> const activation(static_cast<Activation*>(data));
    GError* error = nullptr;
    std::unique_ptr<GVariant, Release> const answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
    tell(activation->done, Error(error));
}

void connected(GObject*, GAsyncResult* result, gpointer data) noexcept {
    std::unique_ptr<Activation> activation(static_cast<Activation*>(data));
    GError* error = nullptr;
    std::unique_ptr<GDBusConnection, Release> const bus(
        g_dbus_connection_new_for_address_finish(result, &error));
    if (!bus) {
        tell(activation->done, Error(error));
        return;
    }
    auto const* const name = activation->identifier.c_str();
    auto const path = activation->path();
    g_dbus_connection_call(bus.get(), name, path.c_str(), "org.freedesktop.Application", "Activate",
                           g_variant_new("(a{sv})", nullptr), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                           activated, activation.release());
}

void launched(GObject*, GAsyncResult* result, gpointer data) noexcept {
    std::unique_ptr<Workspace::Done> const done(static_cast<Workspace::Done*>(data));
    GError* error = nullptr;
    g_app_info_launch_default_for_uri_finish(result, &error);
    tell(*done, Error(error));
}

void started(GObject* source, GAsyncResult* result, gpointer data) noexcept {
    std::unique_ptr<Workspace::Done> const done(static_cast<Workspace::Done*>(data));
    GError* error = nullptr;
    g_app_info_launch_uris_finish(G_APP_INFO(source), result, &error);
    tell(*done, Error(error));
}

using Program = std::unique_ptr<GAppInfo, Release>;

Program defaultFor(std::string const& contentType) {
    return Program(g_app_info_get_default_for_type(contentType.c_str(), FALSE));
}

bool isAnyRecommendedFor(std::string const& contentType) {
    GList* const recommended = g_app_info_get_recommended_for_type(contentType.c_str());
    g_list_free_full(recommended, g_object_unref);
    return recommended != nullptr;
}

// Every kind of text is plain text, too, and where nothing is there for the kind the library settles for the
// editor.
Program programFor(std::string const& contentType) {
    static constexpr auto plainText = "text/plain";
    auto program = defaultFor(contentType);
    if (!program || contentType == plainText || isAnyRecommendedFor(contentType)) return program;
    auto const editor = defaultFor(plainText);
    bool const isEditor = editor && g_app_info_equal(program.get(), editor.get()) != FALSE;
    return isEditor ? nullptr : std::move(program);
}

} // namespace

GIOWorkspace::GIOWorkspace(std::optional<std::string> busAddress) : busAddress(std::move(busAddress)) {}

void GIOWorkspace::open(Foundation::URL const& link, Done done) {
    g_app_info_launch_default_for_uri_async(link.absoluteString.c_str(), nullptr, nullptr, launched,
                                            new Done(std::move(done)));
}

bool GIOWorkspace::hasProgram(std::string const& contentType) const {
    return programFor(contentType) != nullptr;
}

void GIOWorkspace::startProgram(std::string const& contentType, Done done) {
    auto const program = programFor(contentType);
    if (!program) {
        if (done) done("there is no program for " + contentType);
        return;
    }
    g_app_info_launch_uris_async(program.get(), nullptr, nullptr, nullptr, started,
                                 new Done(std::move(done)));
}

void GIOWorkspace::activateApplication(std::string const& identifier, Done done) {
    if (!busAddress) {
        if (done) done("there is no session bus");
        return;
    }
    g_dbus_connection_new_for_address(
        busAddress->c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, connected, new Activation{.identifier = identifier, .done = std::move(done)});
}

} // namespace Platform
