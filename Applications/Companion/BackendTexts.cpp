#include "Applications/Companion/BackendTexts.h"

#include "Applications/Companion/TextLookup.h"
#include "Foundation/Text.h"

namespace Companion::Texts {

using Platform::KeychainStatus;

namespace {

// What a keychain's answer means, and what the person can do.
std::string keychainAnswer(KeychainStatus status, bool isFile) {
    switch (status) {
    case KeychainStatus::interactionNotAllowed: return text("keychain-is-locked");
    case KeychainStatus::authFailed: return text("keychain-refused");
    case KeychainStatus::success:
    case KeychainStatus::ioErr:
    case KeychainStatus::itemNotFound: break;
    }
    auto const number = std::to_string(static_cast<std::int32_t>(status));
    return isFile ? text("key-files-failed", number) : text("keychain-failed", number);
}

} // namespace

std::string noBackend() {
    return text("no-backend");
}

std::string loginNeedsURL() {
    return text("login-needs-url");
}

std::string notABackend(std::string_view url) {
    return text("not-a-backend", quoted(url));
}

std::string backendWithUser() {
    return text("backend-with-user");
}

std::string backendWithQuery(std::string_view url) {
    return text("backend-with-query", quoted(url));
}

std::string backendIsNotEncrypted(std::string_view host) {
    return text("backend-is-not-encrypted", quoted(host));
}

std::string askForToken(std::string_view url) {
    return text("ask-for-token", quoted(url));
}

std::string askForAnyToken() {
    return text("ask-for-any-token");
}

std::string nowhereToTypeTheToken() {
    return text("nowhere-to-type-the-token");
}

std::string notADescriptor() {
    return text("not-a-descriptor");
}

std::string unreadableToken(std::int64_t descriptor, std::string_view reason) {
    return text("unreadable-token", std::to_string(descriptor), reason);
}

std::string noToken() {
    return text("no-token");
}

std::string badToken() {
    return text("bad-token");
}

std::string tokenNotKept(KeychainStatus status, bool isFile) {
    return text("token-not-kept", keychainAnswer(status, isFile));
}

std::string tokenNotRemoved(std::string_view url, KeychainStatus status, bool isFile) {
    return text("token-not-removed", quoted(url), keychainAnswer(status, isFile));
}

std::string tokenIsMissing(std::string_view url, KeychainStatus status,
                           std::optional<std::string> const& urlToLogInAt) {
    if (status != KeychainStatus::itemNotFound) return keychainAnswer(status, false);
    return urlToLogInAt ? text("token-is-missing-elsewhere", quoted(url), *urlToLogInAt)
                        : text("token-is-missing", quoted(url));
}

std::string tokenIsRefused(bool isFromKeychain) {
    return isFromKeychain ? text("token-is-refused") : text("given-token-is-refused");
}

std::string nothingAtTheAddress(std::string_view url) {
    return text("nothing-at-the-address", quoted(url));
}

std::string noSuchBackendMeet() {
    return text("no-such-backend-meet");
}

std::string repetitionIsUnknown(std::string_view repetition) {
    return text("repetition-is-unknown", quoted(repetition));
}

std::string oldTokenStays(std::string_view url) {
    return text("old-token-stays", quoted(url));
}

std::string loggedIn(std::string_view url) {
    return text("logged-in", quoted(url));
}

std::string loggedOut(std::string_view url) {
    return text("logged-out", quoted(url));
}

std::string loggedOutOfUnknown(std::string_view path) {
    return text("logged-out-of-unknown", path);
}

std::string notLoggedIn() {
    return text("not-logged-in");
}

std::string logSwitched(bool isEnabled, std::string_view path) {
    if (!isEnabled) return text("log-switched-off");
    return path.empty() ? text("log-only-printed") : text("log-switched-on", path);
}

std::string logState(bool isEnabled, std::string_view path) {
    return isEnabled ? text("log-is-on", path) : text("log-is-off", path);
}

std::string logIsNoFile(std::string_view path) {
    return text("log-is-no-file", path);
}

std::string waitingFor(std::string_view url, std::int64_t seconds) {
    return text("waiting-for", Foundation::Text::truncated(url, 40), std::to_string(seconds));
}

std::string interruptedReading() {
    return text("interrupted-reading");
}

std::string interruptedBeforeAChange() {
    return text("interrupted-before-a-change");
}

std::string interruptedWriting(std::string_view whatWasNotDone) {
    return text("interrupted-writing", whatWasNotDone);
}

std::string unlessDoneAllTheSame(std::string_view whatWasNotDone) {
    return text("unless-done-all-the-same", whatWasNotDone);
}

std::string meetsNotListed() {
    return text("meets-not-listed");
}

std::string noMeets() {
    return text("no-meets");
}

std::string minutesLong(std::int64_t minutes) {
    return text("minutes-long", std::to_string(minutes));
}

std::string backendNeedsATime() {
    return text("backend-needs-a-time");
}

std::string nothingToEditInMeet() {
    return text("nothing-to-edit-in-meet");
}

std::string severalBackendMeets(std::string_view id) {
    return text("backend-several-meets", quoted(id));
}

std::string backendMeetNotAdded(std::string_view title) {
    return text("backend-meet-not-added", quoted(title));
}

std::string backendMeetAdded(std::string_view title, std::string_view id) {
    return text("backend-meet-added", quoted(title), quoted(id));
}

std::string backendMeetNotChanged(std::string_view id) {
    return text("backend-meet-not-changed", quoted(id));
}

std::string repetitionWouldBeLost(std::string_view whatWasNotDone, std::string_view repetition) {
    return text("repetition-would-be-lost", whatWasNotDone, quoted(repetition));
}

std::string backendMeetChanged(std::string_view title, std::string_view id) {
    return text("backend-meet-changed", quoted(title), quoted(id));
}

std::string backendMeetNotDeleted(std::string_view id) {
    return text("backend-meet-not-deleted", quoted(id));
}

std::string deletingNeedsYes() {
    return text("deleting-needs-yes");
}

std::string deleteMeet(std::string_view title, std::string_view start) {
    return text("delete-meet", quoted(title), start);
}

std::string meetKept(std::string_view title) {
    return text("meet-kept", quoted(title));
}

std::string backendMeetDeleted(std::string_view title, std::string_view id) {
    return text("backend-meet-deleted", quoted(title), quoted(id));
}

std::string noReasonGiven(std::int64_t status) {
    return text("no-reason-given", std::to_string(status));
}

std::string calendarsAreMissing() {
    return text("calendars-are-missing");
}

std::string backendIsMissing() {
    return text("backend-is-missing");
}

std::string withReason(std::string_view what, std::string_view reason) {
    return text("with-reason", what, reason);
}

} // namespace Companion::Texts
