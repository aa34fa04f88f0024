#pragma once

#include "Platform/Audio/SpeechSynthesizer.h"

#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace Platform {

/// Keeps what it was to say, and says nothing.
class RecordingSpeechSynthesizer final : public SpeechSynthesizer {
public:
    /// From now on every utterance fails.
    void failsWith(AudioFailure reason) {
        std::scoped_lock const lock(mutex);
        failure = reason;
    }

    [[nodiscard]] std::expected<void, AudioFailure> speak(Utterance const& utterance) override {
        std::scoped_lock const lock(mutex);
        if (failure) return std::unexpected(*failure);
        said.push_back(utterance);
        return {};
    }

    /// What was said, in order.
    [[nodiscard]] std::vector<Utterance> spoken() const {
        std::scoped_lock const lock(mutex);
        return said;
    }

private:
    mutable std::mutex mutex;
    std::vector<Utterance> said;
    std::optional<AudioFailure> failure;
};

} // namespace Platform
