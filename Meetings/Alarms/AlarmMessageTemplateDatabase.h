#pragma once

#include "Meetings/Alarms/AlarmMessageTemplateEntity.h"
#include "Platform/Defaults/UserDefaults.h"

#include <memory>

namespace Meetings {

/// The template as JSON data among the settings, under "Meetings.AlarmMessageTemplateDatabase.template".
class AlarmMessageTemplateDatabase {
public:
    explicit AlarmMessageTemplateDatabase(std::shared_ptr<Platform::UserDefaults> userDefaults);

    /// Throws AlarmMessageTemplateError: `encodingFailed`, `notStored`.
    void save(AlarmMessageTemplateEntity const& message) const;

    /// One with an empty text when nothing is stored. Throws AlarmMessageTemplateError `decodingFailed`.
    [[nodiscard]] AlarmMessageTemplateEntity get() const;

private:
    std::shared_ptr<Platform::UserDefaults> userDefaults;
};

} // namespace Meetings
