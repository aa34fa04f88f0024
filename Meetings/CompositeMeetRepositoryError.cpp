#include "Meetings/CompositeMeetRepositoryError.h"

namespace Meetings {

char const* CompositeMeetRepositoryError::what() const noexcept {
    switch (errorCase) {
    case Case::noRepositoryAvailable:
        return "There is no source of meets to write to. Nothing was stored; set up a calendar first.";
    }
    return "The meet could not be written. Nothing was stored.";
}

} // namespace Meetings
