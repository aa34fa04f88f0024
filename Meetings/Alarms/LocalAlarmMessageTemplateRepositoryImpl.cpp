#include "Meetings/Alarms/LocalAlarmMessageTemplateRepositoryImpl.h"

#include <utility>

namespace Meetings {

LocalAlarmMessageTemplateRepositoryImpl::LocalAlarmMessageTemplateRepositoryImpl(
    AlarmMessageTemplateDatabase database)
    : database(std::move(database)) {}

AlarmMessageTemplateEntity LocalAlarmMessageTemplateRepositoryImpl::get() const {
    return database.get();
}

void LocalAlarmMessageTemplateRepositoryImpl::save(AlarmMessageTemplateEntity const& message) {
    database.save(message);
}

} // namespace Meetings
