#include "Applications/Companion/CalendarAccess.h"

#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/EventStore/Folder/RefusedFolder.h"

#include <vector>

namespace Companion {

namespace {

std::string remedy(Platform::RefusedFolder const& refused) {
    return Texts::folderIsRefused(shownPath(refused.folder), shownPath(refused.closed),
                                  refused.isClosedByOther);
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

} // namespace

void sayAccess(Invocation const& invocation, Composition::LiveServices& services) {
    auto const consent = requiredConsent(services);
    invocation.console.writeLine(refusesItself(services) ? Texts::storeRefuses()
                                                         : Texts::accessStatus(consent->status()));
    for (auto const& refused : refusedFolders(services))
        invocation.console.writeLine(remedy(refused));
}

std::string whyNoAccess(Composition::LiveServices& services, std::string const& consentIsMissing) {
    if (!refusesItself(services)) return consentIsMissing;
    auto const refused = refusedFolders(services);
    // Someone may have opened them just now.
    return refused.empty() ? consentIsMissing : remedy(refused.front());
}

} // namespace Companion
