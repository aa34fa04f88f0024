#include "Applications/Composition/Texts.h"

#include "Applications/Composition/ProgramTexts.h"
#include "Foundation/Text.h"

#include <cstddef>

namespace Composition {

extern std::string_view const englishTable; // Built in from Resources/en.lproj.

namespace Texts {

namespace {

ProgramTexts& words() {
    static constexpr char marker = 0;
    static ProgramTexts texts("Composition_Composition", &marker, englishTable);
    return texts;
}

template <typename... Values>
std::string text(std::string_view key, Values const&... values) {
    return words().text(key, values...);
}

} // namespace

void useLanguages(std::vector<std::string> const& languages) {
    words().useLanguages(languages);
}

std::string told(std::string_view message) {
    return words().translated(Foundation::Text::sanitizedUTF8(message));
}

std::string quoted(std::string_view value) {
    constexpr std::size_t longest = 60;
    auto const harmless = Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(value));
    return text("quoted", Foundation::Text::truncated(harmless, longest));
}

std::string allDay() {
    return text("all-day");
}

std::string fromTo(std::string_view first, std::string_view last) {
    return text("from-to", first, last);
}

std::string dayAndTime(std::string_view day, std::string_view time) {
    return text("day-and-time", day, time);
}

std::string noHomeForCalendars() {
    return text("no-home-for-calendars");
}

std::string noHomeForKeychain() {
    return text("no-home-for-keychain");
}

std::string unreadableKeychainChoice(std::string_view path, std::string_view reason) {
    return text("unreadable-keychain-choice", path, told(reason));
}

std::string noKeychainNamed(std::string_view path) {
    return text("no-keychain-named", path);
}

std::string keychainChoiceNotSaved(std::string_view path, std::string_view reason) {
    return text("keychain-choice-not-saved", path, told(reason));
}

std::string keyNotCopied(std::int32_t status, std::string_view database) {
    return text("key-not-copied", std::to_string(status), database);
}

std::string tokenNotCarried(std::string_view backend, std::int32_t status) {
    return text("token-not-carried", backend, std::to_string(status));
}

std::string oldCopyInKeyring(std::string_view service) {
    return text("old-copy-in-keyring", service);
}

std::string oldCopyInFile(std::string_view file) {
    return text("old-copy-in-file", file);
}

std::string registryIsBusy(std::int64_t seconds, std::string_view lockFile) {
    return text("registry-is-busy", std::to_string(seconds), lockFile);
}

std::string registryNotLocked(std::string_view lockFile, std::string_view reason) {
    return text("registry-not-locked", lockFile, told(reason));
}

std::string unreadableBackend(std::string_view path, std::string_view reason) {
    return text("unreadable-backend", path, reason);
}

std::string noBackendNamed(std::string_view path) {
    return text("no-backend-named", path);
}

} // namespace Texts
} // namespace Composition
