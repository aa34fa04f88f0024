#pragma once

#include "Meetings/MeetRepository.h"

#include <memory>
#include <vector>

namespace Meetings {

/// Several sources as one: reads come from all of them in order, writes go to the first.
class CompositeMeetRepositoryImpl final : public MeetRepository {
public:
    explicit CompositeMeetRepositoryImpl(std::vector<std::shared_ptr<MeetRepository>> repositories);

    /// Never fails: a source that does is left out. Meets that two sources report appear twice.
    Foundation::Task<std::vector<MeetEntity>> fetchAllMeets() override;

    /// The writes throw CompositeMeetRepositoryError without a repository, else what the first one throws.
    Foundation::Task<MeetEntity> create(MeetEntity meet) override;
    Foundation::Task<MeetEntity> update(MeetEntity meet) override;
    Foundation::Task<void> deleteMeet(MeetEntity meet) override;

private:
    [[nodiscard]] std::shared_ptr<MeetRepository> const& firstRepository() const;

    std::vector<std::shared_ptr<MeetRepository>> repositories;
};

} // namespace Meetings
