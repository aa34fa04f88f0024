#pragma once

#include "Platform/SessionBus/BusConnection.h"

/// How processes of the product find a running widget on the session bus.
namespace Platform::WidgetBus {

/// The name that the one widget of a session owns.
inline constexpr char const* applicationIdentifier = "com.zentorik.quillora.Widget";

/// The signal by which any process asks every running host to load its timelines anew. It has no arguments.
inline constexpr BusSignal reloadSignal{.objectPath = "/com/zentorik/quillora/WidgetCenter",
                                        .interface = "com.zentorik.quillora.WidgetCenter",
                                        .name = "ReloadAllTimelines"};

} // namespace Platform::WidgetBus
