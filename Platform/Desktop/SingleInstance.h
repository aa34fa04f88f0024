#pragma once

#include "Foundation/Environment.h"
#include "Platform/WidgetHost/WidgetFamily.h"

#include <functional>
#include <optional>

struct _GApplication;

namespace Platform {

/// What a second start, a shortcut or the desktop's launcher can ask of the running widget.
struct InstanceCommands {
    std::function<void()> activate;
    std::function<void()> previousDay;
    std::function<void()> nextDay;
    std::function<void()> today;
    std::function<void()> reload;
    std::function<void()> quit;
    std::function<void(WidgetFamily)> chooseFamily;
};

/// One widget a session: owns the widget's name on the session bus, or finds the one that does. The actions
/// there are "previous", "next", "today", "reload", "quit" and "size" (with "small", "medium" or "large"),
/// in the way that desktops know (org.gtk.Actions, org.freedesktop.Application).
class SingleInstance final {
public:
    /// Where no bus runs every instance is the first.
    explicit SingleInstance(Foundation::Environment const& environment);
    SingleInstance(SingleInstance const&) = delete;
    SingleInstance& operator=(SingleInstance const&) = delete;
    ~SingleInstance();

    [[nodiscard]] bool isFirst() const;

    /// Brings the running instance before the person, in `family` if one is named. Only for one that is not
    /// the first; returns when the request is on its way.
    void handOver(std::optional<WidgetFamily> family) const;

    /// Carries out what is asked of this instance from now on, on GLib's default main context.
    void serve(InstanceCommands newCommands);

private:
    _GApplication* application = nullptr; // Null without a bus.
    InstanceCommands commands;
};

} // namespace Platform
