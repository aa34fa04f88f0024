#include "Meetings/EventKitSourceTypeEnum.h"

namespace Meetings::EventKitSourceTypeEnum {

std::string_view description(Platform::EKSourceType type) {
    // Spanish in every language, on purpose: the texts are shared with programs that compare them.
    switch (type) {
    case Platform::EKSourceType::local: return "Local";
    case Platform::EKSourceType::exchange: return "Exchange";
    case Platform::EKSourceType::calDAV: return "CalDAV";
    case Platform::EKSourceType::mobileMe: return "iCloud";
    case Platform::EKSourceType::subscribed: return "Suscrito";
    case Platform::EKSourceType::birthdays: return "Cumpleaños";
    }
    return "Desconocido";
}

} // namespace Meetings::EventKitSourceTypeEnum
