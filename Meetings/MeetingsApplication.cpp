#include "Meetings/MeetingsApplication.h"

#include "Meetings/MeetDomain.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Meetings {
namespace {

using Repository = std::shared_ptr<MeetRepository>;

bool startsEarlier(MeetEntity const& left, MeetEntity const& right) {
    return left.metDate < right.metDate;
}

// Stable, by insertion: stores mostly give their events in order, and a day holds few.
void sortByStart(std::vector<MeetEntity>& meets) {
    for (auto next = meets.begin(); next != meets.end(); ++next) {
        std::rotate(std::upper_bound(meets.begin(), next, *next, startsEarlier), next, std::next(next));
    }
}

// Each task owns copies of what it uses: the application that started it may be a temporary.

Foundation::Task<std::vector<MeetEntity>> dailyMeets(Repository repository, Foundation::Calendar calendar,
                                                     Foundation::Date date) {
    std::vector<MeetEntity> meets = co_await repository->fetchAllMeets();
    // A start that is no instant lies on no day, so none of them reaches the sort.
    std::erase_if(meets,
                  [&](MeetEntity const& meet) { return !calendar.isDateInSameDay(meet.metDate, date); });
    sortByStart(meets);
    co_return meets;
}

Foundation::Task<MeetEntity> validatedCreate(Repository repository, MeetEntity meet) {
    MeetDomain::validate(meet);
    MeetEntity stored = co_await repository->create(std::move(meet));
    co_return stored;
}

Foundation::Task<MeetEntity> validatedUpdate(Repository repository, MeetEntity meet) {
    MeetDomain::validate(meet);
    MeetEntity stored = co_await repository->update(std::move(meet));
    co_return stored;
}

Foundation::Task<void> plainDelete(Repository repository, MeetEntity meet) {
    co_await repository->deleteMeet(std::move(meet));
}

} // namespace

MeetingsApplication::MeetingsApplication(std::shared_ptr<MeetRepository> repository,
                                         Foundation::Calendar calendar)
    : repository(std::move(repository)),
      calendar(std::move(calendar)) {}

Foundation::Task<std::vector<MeetEntity>> MeetingsApplication::fetchDailyMeets(Foundation::Date date) const {
    return dailyMeets(repository, calendar, date);
}

Foundation::Task<MeetEntity> MeetingsApplication::createMeet(MeetEntity meet) const {
    return validatedCreate(repository, std::move(meet));
}

Foundation::Task<MeetEntity> MeetingsApplication::editMeet(MeetEntity meet) const {
    return validatedUpdate(repository, std::move(meet));
}

Foundation::Task<void> MeetingsApplication::deleteMeet(MeetEntity meet) const {
    return plainDelete(repository, std::move(meet));
}

} // namespace Meetings
