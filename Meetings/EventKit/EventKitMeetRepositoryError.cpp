#include "Meetings/EventKit/EventKitMeetRepositoryError.h"

#include <utility>

namespace Meetings {

EventKitMeetRepositoryError EventKitMeetRepositoryError::saveFailed(std::string message) {
    return {Case::saveFailed, std::move(message)};
}

EventKitMeetRepositoryError EventKitMeetRepositoryError::accessDenied() {
    return {Case::accessDenied, {}};
}

EventKitMeetRepositoryError EventKitMeetRepositoryError::eventNotFound() {
    return {Case::eventNotFound, {}};
}

EventKitMeetRepositoryError::EventKitMeetRepositoryError(Case errorCase, std::string text)
    : errorCase(errorCase),
      text(std::move(text)) {}

char const* EventKitMeetRepositoryError::what() const noexcept {
    switch (errorCase) {
    case Case::saveFailed: return text.c_str();
    case Case::accessDenied:
        return "Access to the calendars is not granted. Nothing was read or changed; grant access first.";
    case Case::eventNotFound:
        return "The event is no longer in the calendar. Nothing was changed; load the day again.";
    }
    return "The calendar store failed.";
}

} // namespace Meetings
