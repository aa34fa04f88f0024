#include "Meetings/MeetingsApplication.h"

#include "Meetings/MeetDomain.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Meetings {
namespace {

using Repository = std::shared_ptr<MeetRepository>;

// Earliest first; equal starts keep their order. A service may put thousands on a day, in whatever order.
std::vector<MeetEntity> sortedByStart(std::vector<MeetEntity> meets) {
    std::vector<std::size_t> order(meets.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, {}, [&](std::size_t index) { return std::pair(meets[index].metDate, index); });
    std::vector<MeetEntity> sorted;
    sorted.reserve(meets.size());
    for (auto const index : order)
        sorted.push_back(std::move(meets[index]));
    return sorted;
}

// Each task owns copies of what it uses: the application that started it may be a temporary.

Foundation::Task<std::vector<MeetEntity>> dailyMeets(Repository repository, Foundation::Calendar calendar,
                                                     Foundation::Date date) {
    std::vector<MeetEntity> meets = co_await repository->fetchAllMeets();
    // A start that is no instant lies on no day, so none of them reaches the sort.
    std::erase_if(meets,
                  [&](MeetEntity const& meet) { return !calendar.isDateInSameDay(meet.metDate, date); });
    co_return sortedByStart(std::move(meets));
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
