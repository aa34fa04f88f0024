#include "Applications/Companion/SetupTexts.h"

#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/TextLookup.h"

namespace Companion::Texts {

std::string ownCalendarMade(std::string_view path) {
    return text("own-calendar-made", path);
}

std::string ownCalendarIsThere(std::string_view path) {
    return text("own-calendar-is-there", path);
}

std::string keychainChosen(bool isFile) {
    return isFile ? text("keychain-is-file", text("key-file-protection")) : text("keychain-is-keyring");
}

std::string offerKeyFile(std::string_view reason) {
    return text("offer-key-file", told(reason), text("key-file-protection"));
}

std::string notSwitchedOn(bool isForWantOfAKeyring) {
    return isForWantOfAKeyring ? text("not-switched-on-without-keyring")
                               : text("not-switched-on-without-key");
}

std::string offerEnabling(std::string_view name) {
    return text("offer-enabling", quoted(name));
}

std::string calendarsRefuse() {
    return text("calendars-refuse");
}

std::string notRegisteredWithoutAccess() {
    return text("not-registered-without-access");
}

std::string setupChangedNothing() {
    return text("setup-changed-nothing");
}

std::string thisComputersCalendars() {
    return text("this-computers-calendars");
}

std::string offerFolder(std::string_view path) {
    return text("offer-folder", path);
}

std::string folderIsAdded(std::string_view path) {
    return text("folder-is-added", path);
}

std::string folderLeftOut(std::string_view path) {
    return text("folder-left-out", path, shellWord(path));
}

std::string nestedFolderLeftOut(std::string_view path, std::string_view title, std::string_view otherPath) {
    return text("nested-folder-left-out", path, quoted(title), otherPath, shellWord(path));
}

std::string setupIsDone() {
    return text("setup-is-done");
}

std::string nobodyAnsweredSetup() {
    return text("nobody-answered");
}

std::string setupHasNobodyToAsk() {
    return text("nobody-was-asked");
}

std::string notSwitchedOnWithoutTheKey() {
    return text("not-switched-on-without-the-key");
}

std::string interruptedAtAQuestion() {
    return text("interrupted-at-a-question");
}

std::string interrupted() {
    return text("interrupted");
}

std::string interruptedInTheSetup(std::vector<std::string> const& done) {
    std::string list;
    for (auto const& part : done)
        list += (list.empty() ? "" : ", ") + part;
    return text("interrupted-in-the-set-up", list);
}

std::string setUpOwnCalendar() {
    return text("set-up-own-calendar");
}

std::string setUpAccess() {
    return text("set-up-access");
}

std::string setUpRegistration() {
    return text("set-up-registration");
}

std::string interruptedBeforeRegistrations() {
    return text("interrupted-before-registrations");
}

std::string interruptedInRegistrations() {
    return text("interrupted-in-registrations");
}

std::string interruptedKeepingAToken() {
    return text("interrupted-keeping-a-token");
}

std::string interruptedRemovingAToken() {
    return text("interrupted-removing-a-token");
}

std::string keyringToWaitFor() {
    return text("keyring-to-wait-for");
}

std::string registrationsToWaitFor() {
    return text("registrations-to-wait-for");
}

} // namespace Companion::Texts
