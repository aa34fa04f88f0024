#include "Applications/Alarms/Texts.h"

#include "Applications/Composition/ProgramTexts.h"
#include "Applications/Composition/Texts.h"
#include "Foundation/Text.h"

namespace Alarms {

extern std::string_view const englishTable; // Built in from Resources/en.lproj.

namespace Texts {

namespace {

using Composition::Texts::quoted;

Composition::ProgramTexts& words() {
    static constexpr char marker = 0;
    static Composition::ProgramTexts texts("Alarms_Alarms", &marker, englishTable);
    return texts;
}

template <typename... Values>
std::string text(std::string_view key, Values const&... values) {
    return words().text(key, values...);
}

} // namespace

void useLanguages(std::vector<std::string> const& languages) {
    words().useLanguages(languages);
    Composition::Texts::useLanguages(languages);
}

std::string help() {
    return text("help");
}

std::string version() {
    return "quillora-alarms " QUILLORA_VERSION "\n";
}

std::string open() {
    return text("action-open");
}

std::string snooze() {
    return text("action-snooze");
}

std::string dismiss() {
    return text("action-dismiss");
}

std::string unknownWord(std::string_view word) {
    return text("unknown-word", quoted(word));
}

std::string noHome() {
    return text("no-home");
}

std::string runsAlready() {
    return text("runs-already");
}

std::string cannotLock(std::string_view path, std::string_view reason) {
    auto const shown = Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(path));
    return text("cannot-lock", shown, Composition::Texts::told(reason));
}

std::string calendarsNotRead() {
    return text("calendars-not-read");
}

std::string notRemembered(std::string_view reason) {
    return text("not-remembered", reason);
}

std::string notShown(std::string_view reason) {
    return text("not-shown", reason);
}

std::string notOpened(std::string_view reason) {
    return text("not-opened", reason);
}

std::string notHeard(Composition::AlarmAnnouncer::Failure failure) {
    using enum Composition::AlarmAnnouncer::Failure;
    switch (failure) {
    case noSpeechProgram: return text("not-heard-no-speech-program");
    case speechRefused: return text("not-heard-speech-refused");
    case noPlayer: return text("not-heard-no-player");
    case playerRefused: return text("not-heard-player-refused");
    case noSound: return text("not-heard-no-sound");
    }
    return {};
}

} // namespace Texts
} // namespace Alarms
