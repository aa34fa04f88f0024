#include "Applications/Companion/Doctor/Examinations.h"

#include "Applications/Companion/CalendarFolders.h"
#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/Clock/Clock.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"

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
    for (auto const& root : content.roots) {
        if (auto const reason = whyNotAFolder(root.path))
            findings.broken("sources", *reason, Texts::removeSourceCommand(shellWord(root.id)));
        else
            findings.works("sources", Texts::sourceIsRead(root.title, shownPath(root.path)));
    }
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
