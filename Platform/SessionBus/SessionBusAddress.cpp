#include "Platform/SessionBus/SessionBusAddress.h"

#include <filesystem>
#include <string_view>

#include <fmt/format.h>

namespace Platform {

namespace {

bool standsForItself(char byte) {
    constexpr std::string_view marks = "-_/.\\*";
    bool const isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    return isLetter || (byte >= '0' && byte <= '9') || marks.contains(byte);
}

// D-Bus specification, "Server Addresses": every other byte as "%" and two hexadecimal digits.
std::string escapedValue(std::string_view value) {
    std::string escaped;
    for (char const byte : value) {
        if (standsForItself(byte)) {
            escaped += byte;
        } else {
            escaped += fmt::format("%{:02x}", static_cast<unsigned char>(byte));
        }
    }
    return escaped;
}

} // namespace

std::optional<std::string> sessionBusAddress(Foundation::Environment const& environment) {
    auto const address = environment.value("DBUS_SESSION_BUS_ADDRESS");
    if (address && !address->empty()) return address;
    auto const runtimeFolder = environment.value("XDG_RUNTIME_DIR");
    if (!runtimeFolder || !runtimeFolder->starts_with('/')) return std::nullopt;
    auto const socket = *runtimeFolder + "/bus";
    std::error_code error;
    if (!std::filesystem::is_socket(socket, error)) return std::nullopt;
    return "unix:path=" + escapedValue(socket);
}

} // namespace Platform
