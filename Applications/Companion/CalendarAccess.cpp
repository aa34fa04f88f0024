#include "Applications/Companion/CalendarAccess.h"

#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Platform/EventStore/Folder/RefusedFolder.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace Companion {

namespace {

// The path as one word for a shell, whatever it holds: the person may copy the whole command.
std::string shellWord(std::string const& path) {
    auto const isPlain = [](char character) {
        bool const isLetter =
            (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
        bool const isDigit = character >= '0' && character <= '9';
        return isLetter || isDigit || std::string_view("/._-+@%,:=").contains(character);
    };
    if (std::ranges::all_of(path, isPlain)) return path;
    std::string word = "'";
    for (char const character : path)
        word += character == '\'' ? "'\\''" : std::string(1, character);
    return word + "'";
}

std::string remedy(Platform::RefusedFolder const& refused) {
    auto const closed = shownPath(refused.closed);
    if (refused.isClosedByOther) return Texts::folderIsRefusedByOther(shownPath(refused.folder), closed);
    return Texts::folderIsRefused(shownPath(refused.folder), shellWord(closed));
}

std::vector<Platform::RefusedFolder> refusedFolders(Composition::LiveServices& services) {
    auto const places = services.calendarPlaces();
    auto const configuration = services.calendarConfiguration();
    if (!places || !configuration) return {};
    return Platform::refusedFolders(*places, configuration->load().roots);
}

// The store denies access when it has folders and may open none of them.
bool refusesItself(Composition::LiveServices& services) {
    auto const consent = requiredConsent(services);
    return services.eventStore()->authorizationStatus() != consent->status();
}

std::optional<std::string> whyAnswerIsUnknown(Platform::ConsentRecord const& consent) {
    auto const failure = consent.failure();
    if (!failure) return std::nullopt;
    auto const file = shownPath(consent.file());
    if (failure == std::errc::bad_message) return Texts::accessRecordHoldsNoAnswer(file);
    return Texts::accessRecordIsUnreadable(file, failure.message());
}

// Whole lines.
std::string accessPage(Composition::LiveServices& services) {
    auto const consent = requiredConsent(services);
    if (auto const unknown = whyAnswerIsUnknown(*consent)) throw CommandError::failed(*unknown);
    auto page =
        (refusesItself(services) ? Texts::storeRefuses() : Texts::accessStatus(consent->status())) + "\n";
    for (auto const& refused : refusedFolders(services))
        page += remedy(refused) + "\n";
    return page;
}

} // namespace

void sayAccess(Invocation const& invocation, Composition::LiveServices& services) {
    invocation.console.write(accessPage(services));
}

void confirmAccess(Invocation const& invocation, Composition::LiveServices& services) {
    auto const page = accessPage(services);
    invocation.console.confirm(page, page);
}

std::string whyNoAccess(Composition::LiveServices& services, std::string const& consentIsMissing) {
    if (auto const unknown = whyAnswerIsUnknown(*requiredConsent(services))) return *unknown;
    if (!refusesItself(services)) return consentIsMissing;
    auto const refused = refusedFolders(services);
    // Someone may have opened them just now.
    return refused.empty() ? consentIsMissing : remedy(refused.front());
}

std::string whyNotSwitchedOn(Composition::LiveServices& services) {
    if (!services.calendarPlaces()) return Texts::noHome();
    auto const file = CalendarProviders::EnabledCalendarAccountsStore::fileURL(*services.files());
    auto const content = services.files()->contents(file, Platform::largestPreferenceFile);
    if (content || content.error() == std::errc::no_such_file_or_directory)
        return Texts::calendarsAreNotSetUp();
    return Texts::enabledCalendarsAreUnreadable(shownPath(file), content.error().message());
}

} // namespace Companion
