#include "Applications/Companion/Doctor/Examinations.h"

#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/Support.h"
#include "Applications/Composition/LiveRegistryServices.h"
#include "CalendarProviders/CalendarProviderDatabase.h"
#include "CalendarProviders/CalendarProviderRealmMapper.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Platform/Files/AppGroupFile.h"
#include "Platform/ObjectDatabase/DatabaseFile.h"
#include "Platform/ObjectDatabase/ObjectDatabaseEngine.h"
#include "Platform/ObjectDatabase/Patience.h"
#include "Platform/ObjectDatabase/Quarantine.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <set>
#include <unistd.h>
#include <utility>

namespace Companion::Doctor {

using namespace CalendarProviders;
using Composition::KeychainKind;
using Foundation::SecretBytes;
using Platform::KeychainStatus;
using Providers = std::vector<CalendarProviderEntity>;

namespace {

constexpr std::size_t keyLength = 64;
constexpr std::string_view mirrorGroup = "group.quillora";
constexpr std::string_view mirrorName = "enabledCalendarAccounts.json";
constexpr std::chrono::milliseconds patienceWithALock{2000};

class RegistryExamination {
public:
    RegistryExamination(Composition::LiveServices& services, Findings& findings)
        : services(services),
          registryServices(services),
          findings(findings),
          database(registryServices.databaseFile().value_or(std::filesystem::path())) {}

    void run() {
        examineKeychain();
        examineDatabase();
        examineQuarantine();
        if (providers) examineProviders(*providers);
        examineMirror();
    }

private:
    void examineKeychain() {
        auto const kind = registryServices.chosenKeychain();
        if (!kind) {
            findings.broken("keychain", kind.error(), mendKeychainChoice());
            return;
        }
        bool const isFile = *kind == KeychainKind::file;
        auto const match = registryServices.keychain().value()->copyMatching(registryServices.keyIdentity());
        if (match.status != KeychainStatus::success) {
            examineMissingKey(match.status, isFile);
        } else if (!match.data) {
            findings.broken("keychain", Texts::keyIsAText(isFile), mendWrongItem(isFile));
        } else if (match.data->size() != keyLength) {
            findings.broken("keychain", Texts::keyHasAnotherLength(match.data->size()),
                            mendWrongItem(isFile));
        } else {
            key = match.data;
            findings.works("keychain", Texts::keyIsThere(isFile));
        }
    }

    [[nodiscard]] std::string mendKeychainChoice() {
        auto const file = registryServices.keychainSetting()->file();
        auto const content = services.files()->contents(file, Platform::largestPreferenceFile);
        if (!content && content.error() == std::errc::permission_denied)
            return Texts::makeUsableCommand(shellWord(file.string()));
        // Nothing can be written in the place of a folder. Without a record the keychain in use shows itself.
        if (!content) return Texts::moveAwayCommand(shellWord(file.string()));
        auto const inUse = registryServices.keychainOfDatabase();
        return inUse ? Texts::chooseKeychainCommand(Foundation::rawValue(*inUse))
                     : Texts::mendKeychainChoice();
    }

    void examineMissingKey(KeychainStatus status, bool isFile) {
        bool const hasDatabase = registryServices.isDatabaseThere();
        if (status == KeychainStatus::itemNotFound && !hasDatabase && registryServices.lacksKeyring()) {
            findings.broken("keychain", Texts::keyringIsNotMade(), Texts::mendUnmadeKeyring());
            return;
        }
        if (status == KeychainStatus::itemNotFound && !hasDatabase) {
            findings.note("keychain", Texts::noKeyYet(isFile), Texts::setupCommand());
            return;
        }
        if (status == KeychainStatus::itemNotFound) {
            findings.broken("keychain", Texts::keyIsLost(isFile), Texts::setupCommand());
            return;
        }
        auto const text = Texts::keychainRefuses(isFile, status);
        if (isFile && ::access(database.parent_path().c_str(), X_OK) != 0 && errno == EACCES)
            findings.broken("keychain", text, mendFolder(EACCES));
        else if (isFile)
            findings.broken("keychain", text, Texts::mendKeyFiles(shellWord(keyFolder().string())));
        else
            findings.broken("keychain", text, Texts::mendKeyring(status, hasDatabase));
    }

    [[nodiscard]] std::filesystem::path keyFolder() const { return database.parent_path() / "Keychain"; }

    // What lets the folder of the database be used, which the system refused for that reason.
    [[nodiscard]] std::string mendFolder(int reason) const {
        auto const folder = shellWord(database.parent_path().string());
        return reason == EROFS ? Texts::readOnlyCommand(folder) : Texts::makeWritableCommand(folder);
    }

    [[nodiscard]] std::string mendWrongItem(bool isFile) {
        if (!isFile) return Texts::mendKeyringItem(CalendarProviderDatabase::keychainService);
        return Texts::removeKeyFileCommand(shellWord(registryServices.keyFile().value().string()));
    }

    void examineDatabase() {
        std::error_code hidden;
        auto const status = std::filesystem::symlink_status(database, hidden);
        if (hidden && status.type() != std::filesystem::file_type::not_found) {
            findings.broken("database", Texts::databaseCannotBeRead(shownPath(database), hidden.message()),
                            mendFolder(hidden.value()));
            return;
        }
        if (!registryServices.isDatabaseThere()) {
            providers.emplace();
            findings.note("database", Texts::noDatabaseYet(), Texts::setupCommand());
            return;
        }
        if (!key) {
            findings.note("database", Texts::databaseNeedsKey(shownPath(database)));
            return;
        }
        auto const opened = registryServices.objectDatabaseEngine()->open({
            .fileURL = database,
            .encryptionKey = *key,
            // So that the look itself neither makes nor migrates anything.
            .readOnly = true,
            .schemaVersion = CalendarProviderDatabase::schemaVersion,
            .migrationBlock = {},
        });
        if (!opened) {
            findings.broken(
                "database",
                Texts::databaseDoesNotOpen(shownPath(database), opened.error().localizedDescription),
                Texts::setupCommand());
            return;
        }
        readDatabase(**opened);
    }

    void readDatabase(Platform::ObjectDatabase const& opened) {
        auto const objects = opened.objects(CalendarProviderRealmModel::typeName);
        if (!objects) {
            findings.broken(
                "database",
                Texts::databaseCannotBeRead(shownPath(database), objects.error().localizedDescription),
                Texts::tryAgainCommand());
            return;
        }
        providers.emplace();
        for (auto const& object : *objects) {
            auto provider =
                CalendarProviderRealmMapper::toEntity(CalendarProviderRealmModel::fromPersisted(object));
            if (provider) providers->push_back(*std::move(provider));
        }
        if (!examineWriting()) return;
        findings.works("database", Texts::databaseOpens(providers->size()));
    }

    // Whether a change could be written, as far as that can be told without one.
    bool examineWriting() {
        auto const folder = database.parent_path();
        if (::access(folder.c_str(), W_OK | X_OK) != 0) {
            auto const reason = std::error_code(errno, std::generic_category());
            findings.broken("database", Texts::databaseCannotBeChanged(shownPath(folder), reason.message()),
                            mendFolder(reason.value()));
            return false;
        }
        return examineLock(registryServices.lockFile().value()) &&
               examineLock(Platform::DatabaseFile(database).lockPath());
    }

    bool examineLock(std::filesystem::path const& lockFile) {
        std::error_code error;
        if (!std::filesystem::exists(std::filesystem::symlink_status(lockFile, error))) return true;
        auto const lock = Platform::Patience::outcomeOf(
            patienceWithALock, [&] { return Platform::DatabaseLock::take(lockFile); });
        if (lock) return true;
        if (lock.error() == std::errc::resource_unavailable_try_again) {
            findings.broken("database", Texts::databaseIsLocked(), Texts::whoLocksCommand());
            return false;
        }
        auto const word = shellWord(lockFile.string());
        findings.broken("database",
                        Texts::databaseCannotBeLocked(shownPath(lockFile), lock.error().message()),
                        lock.error() == std::errc::permission_denied ? Texts::makeUsableCommand(word)
                                                                     : Texts::moveAwayCommand(word));
        return false;
    }

    void examineQuarantine() {
        auto const copies = Platform::Quarantine::copies(database);
        if (copies.empty()) return;
        std::string shown;
        std::string words;
        for (auto const& copy : copies) {
            shown += (shown.empty() ? "" : ", ") + shownPath(copy);
            words += " " + shellWord(copy.string());
            auto const lock = Platform::DatabaseFile(copy).lockPath();
            std::error_code error;
            if (std::filesystem::exists(lock, error)) words += " " + shellWord(lock.string());
        }
        findings.note("quarantine", Texts::copiesInQuarantine(copies.size(), shown),
                      Texts::removeCopiesCommand(words));
    }

    void examineProviders(Providers const& registered) {
        if (registered.empty()) {
            findings.broken("providers", Texts::nothingIsRegistered(), Texts::setupCommand());
            return;
        }
        for (auto const& provider : registered) {
            auto const& name = provider.capDisplayName;
            if (provider.capIsEnabled)
                findings.works("providers", Texts::providerIsEnabled(name, provider.capEmail));
            else
                findings.note("providers", Texts::providerIsDisabled(name),
                              Texts::enableCommand(shellWord(provider.capId)));
        }
    }

    [[nodiscard]] std::string mendOfUnreadableMirror(std::filesystem::path const& file,
                                                     std::error_code reason) {
        auto const word = shellWord(file.string());
        if (reason != std::errc::permission_denied)
            return Texts::moveAwayCommand(word) + " && " + rewriteMirrorCommand();
        auto const folder = file.parent_path();
        bool const isFolderOpen = ::access(folder.c_str(), X_OK) == 0;
        return isFolderOpen ? Texts::makeUsableCommand(word)
                            : Texts::makeWritableCommand(shellWord(folder.string()));
    }

    void examineMirror() {
        auto const file = Platform::appGroupFile(*services.files(), mirrorGroup, mirrorName);
        auto const content = services.files()->contents(file, Platform::largestPreferenceFile);
        if (!content && content.error() != std::errc::no_such_file_or_directory) {
            findings.broken("mirror", Texts::mirrorCannotBeRead(shownPath(file), content.error().message()),
                            mendOfUnreadableMirror(file, content.error()));
            return;
        }
        auto const mirror = EnabledCalendarAccountsStore::load(*services.files());
        bool const isOn = mirror.contains(AccountProviderEnum::eventKit);
        if (!providers) {
            findings.note("mirror", Texts::mirrorCannotBeCompared(isOn));
            return;
        }
        std::set<AccountProviderEnum> enabled;
        for (auto const& provider : *providers)
            if (provider.capIsEnabled) enabled.insert(provider.capProvider);
        if (mirror == enabled) {
            findings.works("mirror", Texts::mirrorIsRight(isOn));
        } else if (providers->empty()) {
            findings.broken("mirror", Texts::mirrorWithoutRegistration(), Texts::setupCommand());
        } else {
            findings.broken("mirror", Texts::mirrorIsWrong(isOn), rewriteMirrorCommand());
        }
    }

    // A command that changes nothing but that the widget is told anew.
    [[nodiscard]] std::string rewriteMirrorCommand() const {
        if (!providers || providers->empty()) return Texts::setupCommand();
        auto const& first = providers->front();
        auto const id = shellWord(first.capId);
        return first.capIsEnabled ? Texts::enableCommand(id) : Texts::disableCommand(id);
    }

    Composition::LiveServices& services;
    Composition::LiveRegistryServices registryServices;
    Findings& findings;
    std::filesystem::path database;
    std::optional<SecretBytes> key;
    std::optional<Providers> providers; ///< Absent while nobody can know them.
};

} // namespace

void examineRegistry(Composition::LiveServices& services, Findings& findings) {
    RegistryExamination(services, findings).run();
}

} // namespace Companion::Doctor
