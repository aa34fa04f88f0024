#pragma once

#include "Platform/Audio/SoundPlayer.h"

#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace Platform {

/// Keeps what it was to play, and plays nothing.
class RecordingSoundPlayer final : public SoundPlayer {
public:
    /// From now on every sound fails.
    void failsWith(AudioFailure reason) {
        std::scoped_lock const lock(mutex);
        failure = reason;
    }

    [[nodiscard]] std::expected<void, AudioFailure> play(std::filesystem::path const& file) override {
        std::scoped_lock const lock(mutex);
        if (failure) return std::unexpected(*failure);
        files.push_back(file);
        return {};
    }

    /// What was played, in order.
    [[nodiscard]] std::vector<std::filesystem::path> played() const {
        std::scoped_lock const lock(mutex);
        return files;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::filesystem::path> files;
    std::optional<AudioFailure> failure;
};

} // namespace Platform
