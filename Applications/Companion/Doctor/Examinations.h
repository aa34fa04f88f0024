#pragma once

#include "Applications/Companion/Doctor/CalendarProblems.h"
#include "Applications/Companion/Doctor/Finding.h"
#include "Applications/Composition/LiveServices.h"

/// The looks that the doctor takes, one a topic. None changes anything: no key is made, no database set
/// aside, no answer recorded. Where a home is needed, the environment names one.
namespace Companion::Doctor {

/// keychain, database, quarantine, providers, mirror.
void examineRegistry(Composition::LiveServices& services, Findings& findings);

/// access, sources, calendars.
/// `problems` is the services' log sink.
void examineCalendars(Composition::LiveServices& services, CalendarProblems const& problems,
                      Findings& findings);

/// folder, offset, hidden.
void examineSharedFolder(Composition::LiveServices& services, Findings& findings);

/// settings, alarms, notifications: the announcements of meets.
void examineAlarms(Composition::LiveServices& services, Findings& findings);

/// bus, widget, texts, zone. Needs no home.
void examineSurroundings(Foundation::Environment const& environment, Findings& findings);

} // namespace Companion::Doctor
