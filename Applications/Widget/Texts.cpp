#include "Applications/Widget/Texts.h"

#include "Applications/Composition/ProgramTexts.h"
#include "Applications/Composition/Texts.h"

namespace Widget {

extern std::string_view const englishTable; // Built in from Resources/en.lproj.

namespace Texts {

namespace {

using Composition::Texts::quoted;

Composition::ProgramTexts& words() {
    static constexpr char marker = 0;
    static Composition::ProgramTexts texts("Widget_Widget", &marker, englishTable);
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
    return "quillora-widget " QUILLORA_VERSION "\n";
}

std::string noDisplay() {
    return text("no-display");
}

std::string placementsExclude() {
    return text("placements-exclude");
}

std::string missingValue(std::string_view option) {
    return text("missing-value", option);
}

std::string unexpectedValue(std::string_view option) {
    return text("unexpected-value", option);
}

std::string repeatedOption(std::string_view option) {
    return text("repeated-option", option);
}

std::string unknownWord(std::string_view word) {
    return text("unknown-word", quoted(word));
}

std::string unknownFamily(std::string_view name) {
    return text("unknown-family", quoted(name));
}

std::string unknownScheme(std::string_view name) {
    return text("unknown-scheme", quoted(name));
}

std::string unreadableMoment(std::string_view moment) {
    return text("unreadable-moment", quoted(moment));
}

std::string notRead(std::string_view path, std::string_view cause) {
    return text("not-read", path, Composition::Texts::told(cause));
}

std::string notReadSince(std::string_view since, std::string_view path, std::string_view cause) {
    return text("not-read-since", since, path, Composition::Texts::told(cause));
}

std::string storedDayIsOutOfRange(std::int64_t storedDay) {
    return text("stored-day-is-out-of-range", std::to_string(storedDay));
}

std::string dayNotSaved(std::string_view path, std::string_view cause) {
    return text("day-not-saved", path, Composition::Texts::told(cause));
}

std::string stateNotRead(std::string_view path, std::string_view cause) {
    return text("state-not-read", path, Composition::Texts::told(cause));
}

std::string stateNotTaken(std::string_view path) {
    return text("state-not-taken", path);
}

std::string stateNotSaved(std::string_view path, std::string_view cause) {
    return text("state-not-saved", path, Composition::Texts::told(cause));
}

std::string ofCalendar(std::string_view name) {
    return text("of-calendar", name);
}

std::string openLink(std::string_view host) {
    return text("open-link", host);
}

std::string linkNotOpened(std::string_view cause) {
    return text("link-not-opened", Composition::Texts::told(cause));
}

std::string noCalendarProgram() {
    return text("no-calendar-program");
}

std::string noCalendarProgramFor(std::string_view contentType) {
    return text("no-calendar-program-for", contentType);
}

std::string chooseProgram(std::string_view contentType) {
    return text("choose-program", contentType);
}

std::string calendarProgramNotOpened() {
    return text("calendar-program-not-opened");
}

Platform::FaceWindowTexts window() {
    return {
        .title = "Quillora",
        .today = text("menu-today"),
        .size = text("menu-size"),
        .small = text("menu-small"),
        .medium = text("menu-medium"),
        .large = text("menu-large"),
        .reload = text("menu-reload"),
        .calendarProgram = text("menu-calendar-program"),
        .quit = text("menu-quit"),
    };
}

Platform::ConsentDialogTexts consent() {
    return {
        .title = text("consent-title"),
        .question = text("consent-question"),
        .explanation = text("consent-explanation"),
        .yes = text("consent-yes"),
        .no = text("consent-no"),
    };
}

Platform::DetailDialogTexts meetDialog() {
    return {.close = text("meet-close")};
}

} // namespace Texts
} // namespace Widget
