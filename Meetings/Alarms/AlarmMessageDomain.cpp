#include "Meetings/Alarms/AlarmMessageDomain.h"

#include "Meetings/Alarms/AlarmMessageDomainError.h"

namespace Meetings::AlarmMessageDomain {

void validate(std::string_view text) {
    if (text.empty() || text.contains(eventPlaceholder)) return;
    throw AlarmMessageDomainError(AlarmMessageDomainError::Case::missingEventPlaceholder);
}

std::string render(std::string_view text, std::string_view meetName) {
    std::string rendered;
    for (auto place = text.find(eventPlaceholder); place != std::string_view::npos;
         place = text.find(eventPlaceholder)) {
        rendered += text.substr(0, place);
        rendered += meetName;
        text.remove_prefix(place + eventPlaceholder.size());
    }
    rendered += text;
    return rendered;
}

} // namespace Meetings::AlarmMessageDomain
