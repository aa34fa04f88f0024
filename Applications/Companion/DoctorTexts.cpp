#include "Applications/Companion/DoctorTexts.h"

#include "Applications/Companion/TextLookup.h"

#include <fmt/format.h>

namespace Companion::Texts {

using Platform::KeychainStatus;

std::string doctorHealth(bool isBroken, bool isNote) {
    if (isBroken) return text("doctor-broken");
    return isNote ? text("doctor-note") : text("doctor-works");
}

std::string doctorFound(std::size_t count) {
    return text("doctor-found", std::to_string(count));
}

std::string doctorIsContent() {
    return text("doctor-is-content");
}

std::string doctorMend(std::string_view mend) {
    return text("doctor-mend", mend);
}

std::string homeIsKnown(std::string_view configuration) {
    return text("doctor-home-is-known", configuration);
}

std::string homeIsClosed(std::string_view path, std::string_view reason) {
    return text("doctor-home-is-closed", path, told(reason));
}

std::string mendHome() {
    return text("doctor-mend-home");
}

std::string keyIsThere(bool isFile) {
    return isFile ? text("doctor-key-is-in-file") : text("doctor-key-is-in-keyring");
}

std::string noKeyYet(bool isFile) {
    return isFile ? text("doctor-no-key-file-yet") : text("doctor-no-key-in-keyring-yet");
}

std::string keyIsLost(bool isFile) {
    return isFile ? text("doctor-key-file-is-lost") : text("doctor-key-in-keyring-is-lost");
}

std::string keyIsAText(bool isFile) {
    return isFile ? text("doctor-key-file-is-a-text") : text("doctor-key-in-keyring-is-a-text");
}

std::string keychainRefuses(bool isFile, KeychainStatus status) {
    auto const number = std::to_string(static_cast<std::int32_t>(status));
    if (isFile) return text("doctor-key-file-cannot-be-read", number);
    if (status == KeychainStatus::interactionNotAllowed) return text("doctor-keyring-is-locked", number);
    if (status == KeychainStatus::authFailed) return text("doctor-keyring-refuses", number);
    return text("doctor-keyring-is-unreachable", number);
}

std::string mendKeyring(KeychainStatus status, bool hasDatabase) {
    if (status == KeychainStatus::interactionNotAllowed) return text("doctor-unlock-keyring");
    return hasDatabase ? text("doctor-start-keyring") : text("doctor-choose-key-file");
}

std::string keyHasAnotherLength(std::size_t length) {
    return text("doctor-key-has-another-length", std::to_string(length));
}

std::string mendKeychainChoice() {
    return text("doctor-mend-keychain-choice");
}

std::string mendKeyFiles(std::string_view folder) {
    return text("doctor-mend-key-files", folder);
}

std::string mendKeyringItem(std::string_view service) {
    return text("doctor-mend-keyring-item", service);
}

std::string keyringIsNotMade() {
    return text("doctor-keyring-is-not-made");
}

std::string mendUnmadeKeyring() {
    return text("doctor-mend-unmade-keyring");
}

std::string copiesInQuarantine(std::size_t count, std::string_view paths) {
    return counted("doctor-copies-in-quarantine", static_cast<std::int64_t>(count), paths);
}

std::string mirrorIsRight(bool isOn) {
    return isOn ? text("doctor-mirror-is-rightly-on") : text("doctor-mirror-is-rightly-off");
}

std::string mirrorIsWrong(bool isOn) {
    return isOn ? text("doctor-mirror-is-wrongly-on") : text("doctor-mirror-is-wrongly-off");
}

std::string mirrorCannotBeCompared(bool isOn) {
    return isOn ? text("doctor-mirror-was-on") : text("doctor-mirror-was-off");
}

std::string noDatabaseYet() {
    return text("doctor-no-database-yet");
}

std::string databaseNeedsKey(std::string_view path) {
    return text("doctor-database-needs-key", path);
}

std::string databaseDoesNotOpen(std::string_view path, std::string_view reason) {
    return text("doctor-database-does-not-open", path, told(reason));
}

std::string databaseCannotBeRead(std::string_view path, std::string_view reason) {
    return text("doctor-database-cannot-be-read", path, told(reason));
}

std::string databaseCannotBeChanged(std::string_view folder, std::string_view reason) {
    return text("doctor-database-cannot-be-changed", folder, told(reason));
}

std::string databaseIsLocked() {
    return text("doctor-database-is-locked");
}

std::string databaseCannotBeLocked(std::string_view lockFile, std::string_view reason) {
    return text("doctor-database-cannot-be-locked", lockFile, told(reason));
}

std::string databaseOpens(std::size_t providers) {
    return text("doctor-database-opens", std::to_string(providers));
}

std::string readOnlyCommand(std::string_view folder) {
    return text("doctor-read-only-command", folder);
}

std::string whoLocksCommand() {
    return text("doctor-who-locks-command");
}

std::string tryAgainCommand() {
    return text("doctor-try-again-command");
}

std::string nothingIsRegistered() {
    return text("doctor-nothing-is-registered");
}

std::string providerIsEnabled(std::string_view name, std::string_view email) {
    return text("doctor-provider-is-enabled", quoted(name), quoted(email));
}

std::string providerIsDisabled(std::string_view name) {
    return text("doctor-provider-is-disabled", quoted(name));
}

std::string mirrorWithoutRegistration() {
    return text("doctor-mirror-without-registration");
}

std::string mirrorCannotBeRead(std::string_view path, std::string_view reason) {
    return text("doctor-mirror-cannot-be-read", path, told(reason));
}

std::string accessRecordIsDamaged(std::string_view path) {
    return text("doctor-access-record-is-damaged", path);
}

std::string accessOfNoUse() {
    return text("doctor-access-of-no-use");
}

std::string ownCalendarIsMissing(std::string_view reason) {
    return text("doctor-own-calendar-is-missing", told(reason));
}

std::string whoseFolderCommand(std::string_view folder) {
    return text("doctor-whose-folder-command", folder);
}

std::string sourceIsRead(std::string_view title, std::string_view path) {
    return text("doctor-source-is-read", quoted(title), path);
}

std::string eventsAreRead(std::size_t count) {
    return text("doctor-events-are-read", std::to_string(count));
}

std::string eventsAreSkipped(std::size_t count, std::string_view first) {
    return text("doctor-events-are-skipped", std::to_string(count), told(first));
}

std::string sourcesCommand() {
    return text("doctor-sources-command");
}

std::string mendListOfSources(std::string_view file) {
    return text("doctor-mend-list-of-sources", file);
}

std::string removeSourceCommand(std::string_view id) {
    return text("doctor-remove-source-command", id);
}

std::string sharedFolderWorks(std::string_view path) {
    return text("doctor-shared-folder-works", path);
}

std::string noSharedFolder(std::string_view temporary) {
    return text("doctor-no-shared-folder", temporary);
}

std::string sharedFolderIsMadeLater(std::string_view path) {
    return text("doctor-shared-folder-is-made-later", path);
}

std::string sharedFolderIsMissing(std::string_view path) {
    return text("doctor-shared-folder-is-missing", path);
}

std::string sharedFolderCannotBeUsed(std::string_view path, std::string_view reason) {
    return text("doctor-shared-folder-cannot-be-used", path, told(reason));
}

std::string diskIsFull(std::string_view path) {
    return text("doctor-disk-is-full", path);
}

std::string unsetContainerCommand() {
    return text("doctor-unset-container-command");
}

std::string makeDataHomeCommand() {
    return text("doctor-make-data-home-command");
}

std::string diskSpaceCommand(std::string_view folder) {
    return text("doctor-disk-space-command", folder);
}

std::string offsetIs(std::int64_t offset) {
    return text("doctor-offset-is", std::to_string(offset));
}

std::string offsetIsFarAway(std::int64_t offset) {
    return text("doctor-offset-is-far-away", std::to_string(offset));
}

std::string offsetIsNoNumber(std::string_view path) {
    return text("doctor-offset-is-no-number", path);
}

std::string offsetCannotBeRead(std::string_view path, std::string_view reason) {
    return text("doctor-offset-cannot-be-read", path, told(reason));
}

std::string nothingIsAnnounced() {
    return text("doctor-nothing-is-announced");
}

std::string alarmServiceRuns(std::size_t calendars) {
    return text("doctor-alarm-service-runs", std::to_string(calendars));
}

std::string noAlarmServiceRuns(std::size_t calendars) {
    return text("doctor-no-alarm-service", std::to_string(calendars));
}

std::string startAlarmsCommand() {
    return text("doctor-start-alarms-command");
}

std::string noBusForNotifications() {
    return text("doctor-no-bus-for-notifications");
}

std::string noNotificationServer() {
    return text("doctor-no-notification-server");
}

std::string notificationServerStarts() {
    return text("doctor-notification-server-starts");
}

std::string notificationServerRuns() {
    return text("doctor-notification-server-runs");
}

std::string notificationsCommand() {
    return text("doctor-notifications-command");
}

std::string noBus() {
    return text("doctor-no-bus");
}

std::string busIsUnreachable() {
    return text("doctor-bus-is-unreachable");
}

std::string busWorks() {
    return text("doctor-bus-works");
}

std::string mendBus() {
    return text("doctor-mend-bus");
}

std::string noWidgetRuns() {
    return text("doctor-no-widget-runs");
}

std::string widgetRuns() {
    return text("doctor-widget-runs");
}

std::string bundleWorks(std::string_view folder) {
    return text("doctor-bundle-works", folder);
}

std::string bundleIsMissing(std::string_view name) {
    return text("doctor-bundle-is-missing", name);
}

std::string bundleIsDamaged(std::size_t count, std::string_view first) {
    return text("doctor-bundle-is-damaged", std::to_string(count), first);
}

std::string mendInstallation() {
    return text("doctor-mend-installation");
}

std::string zoneIs(std::string_view name) {
    return text("doctor-zone-is", name);
}

std::string zoneIsUnknown(std::string_view asked, std::string_view used) {
    return text("doctor-zone-is-unknown", quoted(asked), used);
}

std::string noZoneData() {
    return text("doctor-no-zone-data");
}

std::string mendZone() {
    return text("doctor-mend-zone");
}

std::string installZonesCommand() {
    return text("doctor-install-zones-command");
}

// Commands of this program read the same in every language.

std::string setupCommand() {
    return "quillora setup";
}

std::string chooseKeychainCommand(std::string_view keychain) {
    return fmt::format("quillora setup --keychain {}", keychain);
}

std::string enableCommand(std::string_view id) {
    return fmt::format("quillora providers enable {}", id);
}

std::string disableCommand(std::string_view id) {
    return fmt::format("quillora providers disable {}", id);
}

std::string grantCommand() {
    return "quillora access grant";
}

std::string addSourceCommand() {
    return "quillora sources add DIR";
}

std::string hiddenCalendarsAre(std::size_t count) {
    return text("doctor-hidden-calendars-are", std::to_string(count));
}

std::string hiddenCalendarsDoNotCount(std::string_view path, std::string_view reason) {
    return text("doctor-hidden-calendars-do-not-count", path, reason);
}

std::string fileIsDamaged() {
    return text("doctor-file-is-damaged");
}

std::string settingsAreRead(std::string_view path) {
    return text("doctor-settings-are-read", path);
}

std::string settingsDoNotCount(std::string_view path, std::string_view reason) {
    return text("doctor-settings-do-not-count", path, reason);
}

std::string todayCommand() {
    return "quillora today";
}

std::string addAnnouncedCalendarCommand() {
    return "quillora alarm calendars add ID";
}

std::string widgetCommand() {
    return "quillora-widget";
}

std::string showProblemsCommand() {
    return fmt::format("QUILLORA_LOG=error {}", "quillora day");
}

// Nor do those of a shell need a translation.

std::string makeFolderCommand(std::string_view folder) {
    return fmt::format("mkdir -p -m 700 {}", folder);
}

std::string makeWritableCommand(std::string_view folder) {
    return fmt::format("chmod u+rwx {}", folder);
}

std::string makeUsableCommand(std::string_view file) {
    return fmt::format("chmod u+rw {}", file);
}

std::string removeCopiesCommand(std::string_view files) {
    return fmt::format("rm{}", files);
}

std::string removeKeyFileCommand(std::string_view file) {
    return fmt::format("rm {} && {}", file, setupCommand());
}

std::string openFolderCommand(std::string_view folder) {
    return fmt::format("chmod u+rx {}", folder);
}

std::string moveAwayCommand(std::string_view file) {
    return fmt::format("mv {0} {0}.away", file);
}

} // namespace Companion::Texts
