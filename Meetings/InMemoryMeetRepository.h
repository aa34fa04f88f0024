#pragma once

#include "Meetings/MeetRepository.h"

#include <exception>
#include <utility>
#include <vector>

namespace Meetings {

/// A source of given meets that keeps what it was asked to write. It fails once a test says so.
class InMemoryMeetRepository final : public MeetRepository {
public:
    explicit InMemoryMeetRepository(std::vector<MeetEntity> meets = {}) : meets(std::move(meets)) {}

    /// From now on every operation throws `error`.
    template <typename Error>
    void failWith(Error error) {
        failure = std::make_exception_ptr(std::move(error));
    }

    Foundation::Task<std::vector<MeetEntity>> fetchAllMeets() override {
        ++fetchCount;
        throwIfFailing();
        co_return meets;
    }

    Foundation::Task<MeetEntity> create(MeetEntity meet) override {
        created.push_back(meet);
        throwIfFailing();
        co_return meet;
    }

    Foundation::Task<MeetEntity> update(MeetEntity meet) override {
        updated.push_back(meet);
        throwIfFailing();
        co_return meet;
    }

    Foundation::Task<void> deleteMeet(MeetEntity meet) override {
        deleted.push_back(std::move(meet));
        throwIfFailing();
        co_return;
    }

    std::vector<MeetEntity> meets;
    int fetchCount = 0;
    std::vector<MeetEntity> created;
    std::vector<MeetEntity> updated;
    std::vector<MeetEntity> deleted;

private:
    void throwIfFailing() const {
        if (failure) std::rethrow_exception(failure);
    }

    std::exception_ptr failure;
};

} // namespace Meetings
