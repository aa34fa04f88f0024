#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// Tells when the desktop's looks may have changed: a setting of the portal's, or a portal that came or went.
/// What they are now is asked of `PortalAppearance`.
class PortalAppearanceWatch {
public:
    /// Connects in the background. `changed` is called from the main context that is the calling thread's
    /// default now, and never after the watch is gone; destroy it on that thread. Without a bus it is never
    /// called.
    PortalAppearanceWatch(std::optional<std::string> const& busAddress, std::function<void()> changed);
    ~PortalAppearanceWatch();
    PortalAppearanceWatch(PortalAppearanceWatch const&) = delete;
    PortalAppearanceWatch& operator=(PortalAppearanceWatch const&) = delete;

private:
    class Subscription;
    std::shared_ptr<Subscription> subscription;
};

} // namespace Platform
