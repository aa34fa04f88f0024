#pragma once

#include "Platform/Appearance/Appearance.h"

#include <chrono>
#include <memory>
#include <string>

namespace Platform {

/// The looks that the desktop portal reports (`org.freedesktop.portal.Settings`). Without a session bus or a
/// portal, or where an answer takes too long, every value is absent. For use from any thread.
class PortalAppearance final : public Appearance {
public:
    /// How long one value may keep its caller waiting, connecting included.
    static constexpr std::chrono::milliseconds patience{250};

    /// `busAddress` is the session bus's; absent where there is none. Nothing is asked before the first read.
    explicit PortalAppearance(std::optional<std::string> busAddress);
    ~PortalAppearance() override;

    /// "No preference" is light.
    [[nodiscard]] std::optional<ColorScheme> colorScheme() const override;

    /// Absent also where the portal reports channels outside 0 to 1, its sign for "none".
    [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override;

    /// From the interface settings that portals pass on beside the appearance's own; absent where this one
    /// does not.
    [[nodiscard]] std::optional<std::string> interfaceFont() const override;

private:
    class Bus;
    std::unique_ptr<Bus> bus;
};

} // namespace Platform
