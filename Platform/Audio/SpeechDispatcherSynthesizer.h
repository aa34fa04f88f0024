#pragma once

#include "Foundation/Environment.h"
#include "Platform/Audio/SpeechSynthesizer.h"

#include <chrono>

namespace Platform {

/// Speaks through Speech Dispatcher, by its program `spd-say`, which starts the speech server where none
/// runs.
class SpeechDispatcherSynthesizer final : public SpeechSynthesizer {
public:
    /// `environment` tells where programs are.
    explicit SpeechDispatcherSynthesizer(Foundation::Environment environment,
                                         std::chrono::milliseconds patience = std::chrono::seconds(10));

    /// Returns when the server has taken the text; it speaks on by itself. `unavailable` without the program,
    /// `refused` when it fails or does not answer in time.
    [[nodiscard]] std::expected<void, AudioFailure> speak(Utterance const& utterance) override;

private:
    Foundation::Environment environment;
    std::chrono::milliseconds patience;
};

} // namespace Platform
