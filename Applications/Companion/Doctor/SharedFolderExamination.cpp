#include "Applications/Companion/Doctor/Examinations.h"

#include "Applications/Companion/Doctor/PreferenceFault.h"
#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/Support.h"
#include "Foundation/JSON.h"
#include "Meetings/HiddenCalendarsStore.h"
#include "Platform/Files/AppGroupFile.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <cerrno>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Companion::Doctor {

namespace OffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;
namespace JSON = Foundation::JSON;
using std::filesystem::path;

namespace {

constexpr std::string_view group = "group.quillora";

// Where it would be made, for one that is not there yet.
path nearestFolder(path folder) {
    std::error_code error;
    while (!std::filesystem::is_directory(folder, error) && folder.has_relative_path())
        folder = folder.parent_path();
    return folder;
}

bool isFull(path const& folder) {
    struct statvfs space{};
    return ::statvfs(folder.c_str(), &space) == 0 && space.f_blocks > 0 && space.f_bavail == 0;
}

void examineFolder(Composition::LiveServices& services, Findings& findings) {
    auto const container = services.files()->containerURLForSecurityApplicationGroupIdentifier(group);
    if (!container) {
        auto const chosen = services.environment().value("QUILLORA_GROUP_CONTAINER");
        findings.broken("folder", Texts::noSharedFolder(shownPath(services.files()->temporaryDirectory())),
                        chosen ? Texts::unsetContainerCommand() : Texts::makeDataHomeCommand());
        return;
    }
    auto const shown = shownPath(*container);
    auto const word = shellWord(container->string());
    std::error_code error;
    bool const isThere = std::filesystem::is_directory(*container, error);
    bool const isToBeThere = services.environment().value("QUILLORA_GROUP_CONTAINER").has_value();
    if (!isThere && isToBeThere) {
        findings.broken("folder", Texts::sharedFolderIsMissing(shown), Texts::makeFolderCommand(word));
    } else if (isThere && ::access(container->c_str(), R_OK | W_OK | X_OK) != 0) {
        auto const reason = std::error_code(errno, std::generic_category());
        findings.broken("folder", Texts::sharedFolderCannotBeUsed(shown, reason.message()),
                        reason == std::errc::read_only_file_system ? Texts::readOnlyCommand(word)
                                                                   : Texts::makeWritableCommand(word));
    } else if (auto const nearest = nearestFolder(*container); isFull(nearest)) {
        findings.broken("folder", Texts::diskIsFull(shown),
                        Texts::diskSpaceCommand(shellWord(nearest.string())));
    } else {
        findings.works("folder",
                       isThere ? Texts::sharedFolderWorks(shown) : Texts::sharedFolderIsMadeLater(shown));
    }
}

void examineOffset(Composition::LiveServices& services, Findings& findings) {
    auto const& files = *services.files();
    auto const file = Platform::appGroupFile(files, group, "scheduleWidgetDayOffset.json");
    auto const content = files.contents(file, Platform::largestPreferenceFile);
    if (!content && content.error() != std::errc::no_such_file_or_directory) {
        findings.broken("offset", Texts::offsetCannotBeRead(shownPath(file), content.error().message()),
                        Texts::moveAwayCommand(shellWord(file.string())));
        return;
    }
    auto const offset = OffsetStore::load(files);
    auto const document = JSON::parse(content.value_or(""));
    bool const isNumber = document && JSON::integer(*document).has_value();
    if (content && !isNumber)
        findings.note("offset", Texts::offsetIsNoNumber(shownPath(file)), Texts::todayCommand());
    else if (offset > OffsetStore::maxOffset || offset < -OffsetStore::maxOffset)
        findings.note("offset", Texts::offsetIsFarAway(offset), Texts::todayCommand());
    else
        findings.works("offset", Texts::offsetIs(offset));
}

void examineHiddenCalendars(Composition::LiveServices& services, Findings& findings) {
    auto const& files = *services.files();
    auto const file = Platform::appGroupFile(files, group, "hiddenCalendarIdentifiers.json");
    auto const fault = preferenceFault(files, file, Platform::GuardedPreference::Form::listOfTexts);
    if (fault)
        findings.broken("hidden", Texts::hiddenCalendarsDoNotCount(shownPath(file), fault->reason),
                        fault->mend);
    else
        findings.works("hidden",
                       Texts::hiddenCalendarsAre(Meetings::HiddenCalendarsStore::load(files).size()));
}

} // namespace

void examineSharedFolder(Composition::LiveServices& services, Findings& findings) {
    examineFolder(services, findings);
    examineOffset(services, findings);
    examineHiddenCalendars(services, findings);
}

} // namespace Companion::Doctor
