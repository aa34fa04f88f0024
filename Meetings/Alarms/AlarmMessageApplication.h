#pragma once

#include "Meetings/Alarms/AlarmMessageTemplateRepository.h"

#include <memory>
#include <string>
#include <string_view>

namespace Meetings {

/// The use cases of the announcement's template. A value.
class AlarmMessageApplication {
public:
    explicit AlarmMessageApplication(std::shared_ptr<AlarmMessageTemplateRepository> repository);

    /// The stored text; empty when there is none and when it cannot be read.
    [[nodiscard]] std::string getTemplate() const;

    /// Throws AlarmMessageDomainError before anything is written, else what the repository throws. An empty
    /// text means that no template is set from now on.
    void saveTemplate(std::string const& text) const;

    /// The sentence that announces the meet: the template's, or `fallback` when there is none.
    [[nodiscard]] std::string renderedText(std::string_view meetName, std::string const& fallback) const;

private:
    std::shared_ptr<AlarmMessageTemplateRepository> repository;
};

} // namespace Meetings
