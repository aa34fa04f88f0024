#include "Platform/Audio/SpeechDispatcherSynthesizer.h"

#include "Foundation/Text.h"
#include "Platform/Processes/ChildProgram.h"

#include <utility>

namespace Platform {
namespace {

// A calendar may hold a title of megabytes; nobody listens that long, and no command line takes it.
constexpr std::size_t longestText = 500;

} // namespace

SpeechDispatcherSynthesizer::SpeechDispatcherSynthesizer(Foundation::Environment environment,
                                                         std::chrono::milliseconds patience)
    : environment(std::move(environment)),
      patience(patience) {}

std::expected<void, AudioFailure> SpeechDispatcherSynthesizer::speak(Utterance const& utterance) {
    auto const program = ChildProgram::find(environment, "spd-say");
    if (!program) return std::unexpected(AudioFailure::unavailable);
    auto const text = Foundation::Text::truncated(Foundation::Text::neutralized(utterance.text), longestText);
    // "important" is heard before other speech, and no other speech ends it. After "--" a text that begins
    // with a dash is a text.
    auto const code = ChildProgram::run(*program,
                                        {"--application-name", "Quillora", "--priority", "important",
                                         "--language", utterance.languageCode, "--", text},
                                        environment, patience);
    if (code != 0) return std::unexpected(AudioFailure::refused);
    return {};
}

} // namespace Platform
