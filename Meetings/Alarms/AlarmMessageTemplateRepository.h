#pragma once

#include "Meetings/Alarms/AlarmMessageTemplateEntity.h"

namespace Meetings {

/// Where the person's template is kept. Each operation may throw an error of the place.
class AlarmMessageTemplateRepository {
public:
    virtual ~AlarmMessageTemplateRepository() = default;

    [[nodiscard]] virtual AlarmMessageTemplateEntity get() const = 0;
    virtual void save(AlarmMessageTemplateEntity const& message) = 0;
};

} // namespace Meetings
