#pragma once

#include "Foundation/Task.h"
#include "Meetings/MeetEntity.h"

#include <vector>

namespace Meetings {

/// A source of meets. Each operation may throw an error of the source. A repository outlives the tasks that
/// it returns.
class MeetRepository {
public:
    virtual ~MeetRepository() = default;

    virtual Foundation::Task<std::vector<MeetEntity>> fetchAllMeets() = 0;

    /// Yields the meet as stored: the source may assign identifiers.
    virtual Foundation::Task<MeetEntity> create(MeetEntity meet) = 0;

    /// Yields the meet as stored.
    virtual Foundation::Task<MeetEntity> update(MeetEntity meet) = 0;

    virtual Foundation::Task<void> deleteMeet(MeetEntity meet) = 0;
};

} // namespace Meetings
