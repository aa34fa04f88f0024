#pragma once

#include "Meetings/Alarms/AlarmMessageTemplateDatabase.h"
#include "Meetings/Alarms/AlarmMessageTemplateRepository.h"

namespace Meetings {

/// The template among the settings of this computer. Throws what the database throws.
class LocalAlarmMessageTemplateRepositoryImpl final : public AlarmMessageTemplateRepository {
public:
    explicit LocalAlarmMessageTemplateRepositoryImpl(AlarmMessageTemplateDatabase database);

    [[nodiscard]] AlarmMessageTemplateEntity get() const override;
    void save(AlarmMessageTemplateEntity const& message) override;

private:
    AlarmMessageTemplateDatabase database;
};

} // namespace Meetings
