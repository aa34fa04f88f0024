#pragma once

#include "Platform/EventStore/ICalendar/ComponentText.h"

/// What a changed occurrence says, and what its series.
namespace Platform::ICalendar {

/// Gives `series` the title, notes, location and link of an exception as they are written there, where they
/// read otherwise. What the exception does not say stays, and so does all else.
void takeTexts(ComponentText& series, ComponentText const& exception);

/// Whether an exception says anything otherwise than its series, more or less, apart from when it is and from
/// what tells one version of an event from another.
bool differsFrom(ComponentText const& series, ComponentText const& exception);

} // namespace Platform::ICalendar
