#include "Meetings/MeetValidationError.h"

namespace Meetings {

char const* MeetValidationError::what() const noexcept {
    switch (errorCase) {
    case Case::invalidTitle: return "The meet has no title. Nothing was stored; give it a title.";
    case Case::invalidTimeRange:
        return "The meet does not end after it starts. Nothing was stored; give it a later end.";
    }
    return "The meet is not valid. Nothing was stored.";
}

} // namespace Meetings
