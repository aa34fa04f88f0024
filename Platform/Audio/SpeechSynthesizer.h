#pragma once

#include "Platform/Audio/AudioFailure.h"

#include <expected>
#include <string>

namespace Platform {

/// One thing to say aloud.
struct Utterance {
    std::string text;
    std::string languageCode; ///< BCP 47, such as "es-CO".

    bool operator==(Utterance const&) const = default;
};

/// Speaks for the program.
class SpeechSynthesizer {
public:
    virtual ~SpeechSynthesizer() = default;

    /// Has the text spoken; returns when that is under way or over. It may take seconds: not for a thread
    /// that owns a window. May be called from any thread.
    [[nodiscard]] virtual std::expected<void, AudioFailure> speak(Utterance const& utterance) = 0;
};

} // namespace Platform
