#pragma once

#include "Platform/Audio/AudioFailure.h"

#include <expected>
#include <filesystem>

namespace Platform {

/// Plays sounds for the program.
class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;

    /// Plays a file of a few seconds and returns when it has ended: not for a thread that owns a window. May
    /// be called from any thread.
    [[nodiscard]] virtual std::expected<void, AudioFailure> play(std::filesystem::path const& file) = 0;
};

} // namespace Platform
