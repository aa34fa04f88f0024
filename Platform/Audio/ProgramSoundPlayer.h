#pragma once

#include "Foundation/Environment.h"
#include "Platform/Audio/SoundPlayer.h"

#include <chrono>

namespace Platform {

/// Plays through the programs of the desktop's sound servers: `pw-play`, `paplay`, `canberra-gtk-play`,
/// `aplay`, the first that is installed and does it.
class ProgramSoundPlayer final : public SoundPlayer {
public:
    /// `environment` tells where programs are. One that is not done in time counts as failed: it waits for a
    /// device that somebody else holds.
    explicit ProgramSoundPlayer(Foundation::Environment environment,
                                std::chrono::milliseconds patience = std::chrono::seconds(15));

    /// `unavailable` when none of the programs is installed, `refused` when each that is fails.
    [[nodiscard]] std::expected<void, AudioFailure> play(std::filesystem::path const& file) override;

private:
    Foundation::Environment environment;
    std::chrono::milliseconds patience;
};

} // namespace Platform
