#include "Meetings/Alarms/AlarmMessageDomainError.h"

namespace Meetings {

char const* AlarmMessageDomainError::what() const noexcept {
    switch (errorCase) {
    case Case::missingEventPlaceholder:
        return "The message does not say where the meet's name belongs. Nothing was stored; write {event} "
               "in that place.";
    }
    return "The message is not valid. Nothing was stored.";
}

} // namespace Meetings
