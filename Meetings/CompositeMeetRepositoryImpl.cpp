#include "Meetings/CompositeMeetRepositoryImpl.h"

#include "Meetings/CompositeMeetRepositoryError.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Meetings {
namespace {

// Awaiting is not possible where an exception is handled, so a failing source becomes an empty one here.
Foundation::Task<std::vector<MeetEntity>> fetchOrNothing(std::shared_ptr<MeetRepository> repository) {
    try {
        std::vector<MeetEntity> meets = co_await repository->fetchAllMeets();
        co_return meets;
    } catch (...) {
        // One unreachable source must not blank the others, on purpose without a report.
    }
    co_return std::vector<MeetEntity>{};
}

} // namespace

CompositeMeetRepositoryImpl::CompositeMeetRepositoryImpl(
    std::vector<std::shared_ptr<MeetRepository>> repositories)
    : repositories(std::move(repositories)) {}

Foundation::Task<std::vector<MeetEntity>> CompositeMeetRepositoryImpl::fetchAllMeets() {
    std::vector<MeetEntity> result;
    for (auto const& repository : repositories) {
        std::vector<MeetEntity> meets = co_await fetchOrNothing(repository);
        if (result.empty()) {
            result = std::move(meets);
        } else {
            std::ranges::move(meets, std::back_inserter(result));
        }
    }
    co_return result;
}

// The writes do not look at `metSource`, on purpose: the first repository receives every one.

Foundation::Task<MeetEntity> CompositeMeetRepositoryImpl::create(MeetEntity meet) {
    MeetEntity stored = co_await firstRepository()->create(std::move(meet));
    co_return stored;
}

Foundation::Task<MeetEntity> CompositeMeetRepositoryImpl::update(MeetEntity meet) {
    MeetEntity stored = co_await firstRepository()->update(std::move(meet));
    co_return stored;
}

Foundation::Task<void> CompositeMeetRepositoryImpl::deleteMeet(MeetEntity meet) {
    co_await firstRepository()->deleteMeet(std::move(meet));
}

std::shared_ptr<MeetRepository> const& CompositeMeetRepositoryImpl::firstRepository() const {
    if (repositories.empty()) {
        throw CompositeMeetRepositoryError(CompositeMeetRepositoryError::Case::noRepositoryAvailable);
    }
    return repositories.front();
}

} // namespace Meetings
