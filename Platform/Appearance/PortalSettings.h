#pragma once

/// Names of the desktop portal's settings, and what their values mean. Only this folder's sources include it.
namespace Platform::PortalSettings {

inline constexpr char const* busName = "org.freedesktop.portal.Desktop";
inline constexpr char const* objectPath = "/org/freedesktop/portal/desktop";
inline constexpr char const* interfaceName = "org.freedesktop.portal.Settings";
inline constexpr char const* appearance = "org.freedesktop.appearance";
inline constexpr char const* desktopInterface = "org.gnome.desktop.interface";

} // namespace Platform::PortalSettings
