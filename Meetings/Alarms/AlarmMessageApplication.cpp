#include "Meetings/Alarms/AlarmMessageApplication.h"

#include "Meetings/Alarms/AlarmMessageDomain.h"

#include <exception>
#include <utility>

namespace Meetings {

AlarmMessageApplication::AlarmMessageApplication(std::shared_ptr<AlarmMessageTemplateRepository> repository)
    : repository(std::move(repository)) {}

std::string AlarmMessageApplication::getTemplate() const {
    try {
        return repository->get().amtText;
    } catch (std::exception const&) {
        // An alarm is announced in any case: in the usual words.
        return "";
    }
}

void AlarmMessageApplication::saveTemplate(std::string const& text) const {
    AlarmMessageDomain::validate(text);
    repository->save({.amtText = text});
}

std::string AlarmMessageApplication::renderedText(std::string_view meetName,
                                                  std::string const& fallback) const {
    auto const text = getTemplate();
    if (text.empty()) return fallback;
    return AlarmMessageDomain::render(text, meetName);
}

} // namespace Meetings
