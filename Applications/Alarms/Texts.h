#pragma once

#include "Applications/Composition/AlarmAnnouncer.h"

#include <string>
#include <string_view>
#include <vector>

/// The program's own texts, from the tables in Resources/.
namespace Alarms::Texts {

/// Speaks these languages from now on, best first. English until then. Once, before other threads are
/// started.
void useLanguages(std::vector<std::string> const& languages);

/// Whole pages, each ending with a line feed.
std::string help();
std::string version();

// On a notification.
std::string open();
std::string snooze();
std::string dismiss();

// Errors, one line each without its end.
std::string unknownWord(std::string_view word);
std::string noHome();
std::string runsAlready();
std::string cannotLock(std::string_view path, std::string_view reason);

// For the log.
std::string calendarsNotRead();
std::string notRemembered(std::string_view reason);
std::string notShown(std::string_view reason);
std::string notOpened(std::string_view reason);
std::string notHeard(Composition::AlarmAnnouncer::Failure failure);

} // namespace Alarms::Texts
