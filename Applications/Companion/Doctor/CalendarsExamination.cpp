#include "Applications/Companion/Doctor/Examinations.h"

#include "Applications/Companion/CalendarFolders.h"
#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/Clock/Clock.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/RefusedFolder.h"

#include <algorithm>

namespace Companion::Doctor {

using Platform::EKAuthorizationStatus;

namespace {

constexpr double shownSeconds = 10 * 86400.0; // Either way from now, as far as the widget reads.

// Whether the calendars may be read.
bool examineAccess(Composition::LiveServices& services, Findings& findings) {
    auto const consent = services.consent();
    auto const status = consent->status();
    if (consent->failure()) {
        findings.broken("access", Texts::accessRecordIsDamaged(shownPath(consent->file())),
                        Texts::grantCommand());
        return false;
    }
    if (status != EKAuthorizationStatus::fullAccess) {
        findings.broken("access", Texts::accessStatus(status), Texts::grantCommand());
        return false;
    }
    if (services.eventStore()->authorizationStatus() != EKAuthorizationStatus::fullAccess) {
        findings.broken("access", Texts::accessOfNoUse(), Texts::sourcesCommand());
        return false;
    }
    findings.works("access", Texts::accessStatus(status));
    return true;
}

void examineOwnCalendar(std::filesystem::path const& folder, Findings& findings) {
    if (auto const reason = whyNotAFolder(folder))
        findings.broken("sources", Texts::ownCalendarIsMissing(*reason), Texts::setupCommand());
}

// Why the file system refuses to open `folder`, which is `source` or lies in it; absent when it does not.
std::optional<Platform::RefusedFolder> refusalOf(std::filesystem::path const& folder,
                                                 Platform::CalendarRoot const& source,
                                                 Platform::CalendarStorePlaces const& places) {
    auto asked = source;
    asked.path = folder;
    auto const refused = Platform::refusedFolders(places, {asked});
    auto const found = std::ranges::find(refused, folder, &Platform::RefusedFolder::folder);
    return found == refused.end() ? std::nullopt : std::optional(*found);
}

void reportRefusal(Platform::RefusedFolder const& refused, Findings& findings) {
    auto const word = shellWord(refused.closed.string());
    auto const reason = std::make_error_code(std::errc::permission_denied).message();
    findings.broken("sources", Texts::unreadableFolder(shownPath(refused.folder), reason),
                    refused.isClosedByOther ? Texts::whoseFolderCommand(word)
                                            : Texts::openFolderCommand(word));
}

// The folders in a source that the store reads as calendars. Whether all of them may be read.
bool examineCalendarFolders(Platform::CalendarRoot const& source, Platform::CalendarStorePlaces const& places,
                            Findings& findings) {
    bool areOpen = true;
    std::error_code error;
    std::filesystem::directory_iterator entry(source.path, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::error_code unknown;
        if (entry->path().filename().string().starts_with('.') || !entry->is_directory(unknown)) continue;
        auto const refused = refusalOf(entry->path(), source, places);
        if (!refused) continue;
        areOpen = false;
        reportRefusal(*refused, findings);
    }
    return areOpen;
}

void examineSource(Platform::CalendarRoot const& source, Platform::CalendarStorePlaces const& places,
                   Findings& findings) {
    if (auto const refused = refusalOf(source.path, source, places))
        reportRefusal(*refused, findings);
    else if (auto const reason = whyNotAFolder(source.path))
        findings.broken("sources", *reason, Texts::removeSourceCommand(shellWord(source.id)));
    else if (examineCalendarFolders(source, places, findings))
        findings.works("sources", Texts::sourceIsRead(source.title, shownPath(source.path)));
}

void examineSources(Composition::LiveServices& services, Findings& findings) {
    examineOwnCalendar(services.calendarPlaces()->nativeCalendar, findings);
    auto const configuration = services.calendarConfiguration();
    auto const content = configuration->load();
    if (content.problem) {
        findings.broken("sources", Texts::problemOf(shownPath(configuration->file()), *content.problem),
                        content.mayBeChanged
                            ? Texts::addSourceCommand()
                            : Texts::mendListOfSources(shellWord(configuration->file().string())));
    } else if (content.roots.empty()) {
        findings.note("sources", Texts::noSources(), Texts::addSourceCommand());
    }
    for (auto const& root : content.roots)
        examineSource(root, *services.calendarPlaces(), findings);
}

void examineContent(Composition::LiveServices& services, CalendarProblems const& problems,
                    Findings& findings) {
    auto const now = services.clock()->now().secondsSince1970;
    auto const events =
        services.eventStore()->eventsMatching({.start = {.secondsSince1970 = now - shownSeconds},
                                               .end = {.secondsSince1970 = now + shownSeconds},
                                               .calendars = std::nullopt});
    auto const skipped = problems.messages();
    if (skipped.empty())
        findings.works("calendars", Texts::eventsAreRead(events.size()));
    else
        findings.note("calendars", Texts::eventsAreSkipped(skipped.size(), skipped.front()),
                      Texts::showProblemsCommand());
}

} // namespace

void examineCalendars(Composition::LiveServices& services, CalendarProblems const& problems,
                      Findings& findings) {
    bool const mayRead = examineAccess(services, findings);
    examineSources(services, findings);
    // Who has not allowed it is not read, also not to see whether it would work.
    if (mayRead) examineContent(services, problems, findings);
}

} // namespace Companion::Doctor
