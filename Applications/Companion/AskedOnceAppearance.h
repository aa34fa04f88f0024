#pragma once

#include "Platform/Appearance/Appearance.h"

#include <memory>
#include <mutex>
#include <utility>

namespace Companion {

/// The desktop's looks for the length of one command: each is asked for at most once, and not at all where
/// the person said it. A command draws one moment, and every question is a round trip over the bus.
class AskedOnceAppearance final : public Platform::Appearance {
public:
    AskedOnceAppearance(std::shared_ptr<Platform::Appearance const> desktop,
                        std::optional<Platform::ColorScheme> givenScheme)
        : desktop(std::move(desktop)) {
        if (givenScheme) scheme = givenScheme;
    }

    [[nodiscard]] std::optional<Platform::ColorScheme> colorScheme() const override {
        std::scoped_lock const lock(mutex);
        if (!scheme) scheme = desktop->colorScheme();
        return *scheme;
    }

    [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override {
        std::scoped_lock const lock(mutex);
        if (!accent) accent = desktop->accentColor();
        return *accent;
    }

    [[nodiscard]] std::optional<std::string> interfaceFont() const override {
        std::scoped_lock const lock(mutex);
        if (!font) font = desktop->interfaceFont();
        return *font;
    }

private:
    std::shared_ptr<Platform::Appearance const> desktop;
    mutable std::mutex mutex;
    // The outer optional tells whether the desktop was asked, the inner one is its answer.
    mutable std::optional<std::optional<Platform::ColorScheme>> scheme;
    mutable std::optional<std::optional<std::array<double, 3>>> accent;
    mutable std::optional<std::optional<std::string>> font;
};

} // namespace Companion
