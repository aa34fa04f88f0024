#pragma once

#include "Platform/Keychain/KeychainStatus.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// What `quillora doctor` says: what is so, and why, and the commands that mend it. Paths come as they may be
/// shown; in commands they are a shell's words.
namespace Companion::Texts {

std::string doctorHealth(bool isBroken, bool isNote);
std::string doctorMend(std::string_view mend);
std::string doctorIsContent();
std::string doctorFound(std::size_t count);
std::string homeIsKnown(std::string_view configuration);
std::string homeIsClosed(std::string_view path, std::string_view reason);
std::string mendHome();

// Keychain.
std::string keyIsThere(bool isFile);
std::string noKeyYet(bool isFile);
std::string keyIsLost(bool isFile);
std::string keyIsAText(bool isFile);
std::string keyHasAnotherLength(std::size_t length);
std::string keychainRefuses(bool isFile, Platform::KeychainStatus status);
std::string mendKeychainChoice();
std::string mendKeyFiles(std::string_view folder);
std::string mendKeyring(Platform::KeychainStatus status, bool hasDatabase);
std::string mendKeyringItem(std::string_view service);
std::string removeKeyFileCommand(std::string_view file);
std::string keyringIsNotMade();
std::string mendUnmadeKeyring();

// Database, providers, mirror.
std::string noDatabaseYet();
std::string databaseNeedsKey(std::string_view path);
std::string databaseDoesNotOpen(std::string_view path, std::string_view reason);
std::string databaseCannotBeRead(std::string_view path, std::string_view reason);
std::string databaseCannotBeChanged(std::string_view folder, std::string_view reason);
std::string databaseIsLocked();
std::string databaseCannotBeLocked(std::string_view lockFile, std::string_view reason);
std::string databaseOpens(std::size_t providers);
std::string copiesInQuarantine(std::size_t count, std::string_view paths);
std::string removeCopiesCommand(std::string_view files);
std::string whoLocksCommand();
std::string tryAgainCommand();
std::string nothingIsRegistered();
std::string providerIsEnabled(std::string_view name, std::string_view email);
std::string providerIsDisabled(std::string_view name);
std::string chooseKeychainCommand(std::string_view keychain);
std::string enableCommand(std::string_view id);
std::string disableCommand(std::string_view id);
std::string mirrorIsRight(bool isOn);
std::string mirrorIsWrong(bool isOn);
std::string mirrorCannotBeCompared(bool isOn);
std::string mirrorWithoutRegistration();
std::string mirrorCannotBeRead(std::string_view path, std::string_view reason);

// Access and sources.
std::string accessRecordIsDamaged(std::string_view path);
std::string accessOfNoUse();
std::string ownCalendarIsMissing(std::string_view reason);
std::string openFolderCommand(std::string_view folder);
std::string whoseFolderCommand(std::string_view folder);
std::string sourceIsRead(std::string_view title, std::string_view path);
std::string eventsAreRead(std::size_t count);
std::string eventsAreSkipped(std::size_t count, std::string_view first);
std::string grantCommand();
std::string sourcesCommand();
std::string addSourceCommand();
std::string mendListOfSources(std::string_view file);
std::string removeSourceCommand(std::string_view id);
std::string showProblemsCommand();

// The shared folder.
std::string sharedFolderWorks(std::string_view path);
std::string sharedFolderIsMadeLater(std::string_view path);
std::string noSharedFolder(std::string_view temporary);
std::string sharedFolderIsMissing(std::string_view path);
std::string sharedFolderCannotBeUsed(std::string_view path, std::string_view reason);
std::string diskIsFull(std::string_view path);
std::string unsetContainerCommand();
std::string makeDataHomeCommand();
std::string makeFolderCommand(std::string_view folder);
std::string makeWritableCommand(std::string_view folder);
std::string makeUsableCommand(std::string_view file);
std::string readOnlyCommand(std::string_view folder);
std::string diskSpaceCommand(std::string_view folder);
std::string offsetIs(std::int64_t offset);
std::string offsetIsFarAway(std::int64_t offset);
std::string offsetIsNoNumber(std::string_view path);
std::string offsetCannotBeRead(std::string_view path, std::string_view reason);
std::string moveAwayCommand(std::string_view file);
std::string todayCommand();
std::string hiddenCalendarsAre(std::size_t count);
std::string hiddenCalendarsDoNotCount(std::string_view path, std::string_view reason);

// Preference files.
std::string fileIsDamaged();
std::string settingsAreRead(std::string_view path);
std::string settingsDoNotCount(std::string_view path, std::string_view reason);

// Alarms and notifications.
std::string nothingIsAnnounced();
std::string alarmServiceRuns(std::size_t calendars);
std::string noAlarmServiceRuns(std::size_t calendars);
std::string addAnnouncedCalendarCommand();
std::string startAlarmsCommand();
std::string noBusForNotifications();
std::string noNotificationServer();
std::string notificationServerStarts();
std::string notificationServerRuns();
std::string notificationsCommand();

// Bus, texts, time zone.
std::string noBus();
std::string busIsUnreachable();
std::string busWorks();
std::string mendBus();
std::string noWidgetRuns();
std::string widgetRuns();
std::string widgetCommand();
std::string bundleWorks(std::string_view folder);
std::string bundleIsMissing(std::string_view name);
std::string bundleIsDamaged(std::size_t count, std::string_view first);
std::string mendInstallation();
std::string zoneIs(std::string_view name);
std::string zoneIsUnknown(std::string_view asked, std::string_view used);
std::string noZoneData();
std::string mendZone();
std::string installZonesCommand();

std::string setupCommand();

} // namespace Companion::Texts
