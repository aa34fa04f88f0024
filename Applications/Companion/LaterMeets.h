#pragma once

#include "Foundation/Calendar.h"
#include "Meetings/EventKit/EventKitStoring.h"
#include "Platform/EventStore/EKEvent.h"

#include <optional>

/// A changed occurrence from which a series is changed, and those that follow it.
namespace Companion {

/// An occurrence of the same series as nobody changed it, the next one if there is one near; absent when
/// `event` itself is such a one, or when four years around it hold none.
std::optional<Platform::EKEvent> unchangedOccurrence(Platform::EKEvent const& event,
                                                     Meetings::EventKitStoring& store,
                                                     Foundation::Calendar const& calendar);

/// What becomes of such an occurrence when `before`, which was changed by itself, becomes `after` and all
/// that follow go along: it takes over what the other says of itself, and moves as far.
Platform::EKEvent followed(Platform::EKEvent occurrence, Platform::EKEvent const& before,
                           Platform::EKEvent const& after);

} // namespace Companion
