#include "Meetings/CompositeMeetRepositoryImpl.h"

#include "Meetings/CompositeMeetRepositoryError.h"
#include "Meetings/InMemoryMeetRepository.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace Meetings {
namespace {

using Foundation::runTask;

std::shared_ptr<InMemoryMeetRepository> sourceOf(std::vector<MeetEntity> meets = {}) {
    return std::make_shared<InMemoryMeetRepository>(std::move(meets));
}

std::shared_ptr<InMemoryMeetRepository> failingSource() {
    auto source = sourceOf({someMeet("never seen")});
    source->failWith(std::runtime_error("unreachable"));
    return source;
}

TEST(CompositeMeetRepositoryImplTests, meetsComeInTheOrderOfTheRepositoriesWithDuplicates) {
    auto const first = sourceOf({someMeet("A"), someMeet("X")});
    auto const second = sourceOf({someMeet("B"), someMeet("X")});
    CompositeMeetRepositoryImpl composite({first, second});
    EXPECT_EQ(runTask(composite.fetchAllMeets()),
              (std::vector{someMeet("A"), someMeet("X"), someMeet("B"), someMeet("X")}));
}

TEST(CompositeMeetRepositoryImplTests, aFailingRepositoryDoesNotBlankTheOthers) {
    auto const second = sourceOf({someMeet("A"), someMeet("B")});
    CompositeMeetRepositoryImpl composite({failingSource(), second, failingSource()});
    EXPECT_EQ(runTask(composite.fetchAllMeets()), (std::vector{someMeet("A"), someMeet("B")}));
}

TEST(CompositeMeetRepositoryImplTests, aFailureThatIsNoStandardErrorIsSwallowedToo) {
    auto const odd = sourceOf();
    odd->failWith(42);
    CompositeMeetRepositoryImpl composite({odd, sourceOf({someMeet("A")})});
    EXPECT_EQ(runTask(composite.fetchAllMeets()), std::vector{someMeet("A")});
}

TEST(CompositeMeetRepositoryImplTests, aFetchWithoutRepositoriesOrWithOnlyFailingOnesIsEmpty) {
    CompositeMeetRepositoryImpl empty({});
    CompositeMeetRepositoryImpl failing({failingSource(), failingSource()});
    EXPECT_TRUE(runTask(empty.fetchAllMeets()).empty());
    EXPECT_TRUE(runTask(failing.fetchAllMeets()).empty());
}

TEST(CompositeMeetRepositoryImplTests, everyWriteGoesToTheFirstRepositoryWhateverTheMeetsSource) {
    auto const first = sourceOf();
    auto const second = sourceOf();
    CompositeMeetRepositoryImpl composite({first, second});
    auto meet = someMeet();
    meet.metSource = MeetSource::backend;

    EXPECT_EQ(runTask(composite.create(meet)), meet);
    EXPECT_EQ(runTask(composite.update(meet)), meet);
    runTask(composite.deleteMeet(meet));

    EXPECT_EQ(first->created, std::vector{meet});
    EXPECT_EQ(first->updated, std::vector{meet});
    EXPECT_EQ(first->deleted, std::vector{meet});
    EXPECT_TRUE(second->created.empty());
    EXPECT_TRUE(second->updated.empty());
    EXPECT_TRUE(second->deleted.empty());
}

TEST(CompositeMeetRepositoryImplTests, aWritePassesTheFirstRepositorysErrorOnUnchanged) {
    CompositeMeetRepositoryImpl composite({failingSource(), sourceOf()});
    EXPECT_THROW(runTask(composite.create(someMeet())), std::runtime_error);
    EXPECT_THROW(runTask(composite.update(someMeet())), std::runtime_error);
    EXPECT_THROW(runTask(composite.deleteMeet(someMeet())), std::runtime_error);
}

TEST(CompositeMeetRepositoryImplTests, aWriteWithoutRepositoriesIsRefused) {
    CompositeMeetRepositoryImpl composite({});
    EXPECT_THROW(runTask(composite.create(someMeet())), CompositeMeetRepositoryError);
    EXPECT_THROW(runTask(composite.update(someMeet())), CompositeMeetRepositoryError);
    EXPECT_THROW(runTask(composite.deleteMeet(someMeet())), CompositeMeetRepositoryError);
}

TEST(CompositeMeetRepositoryErrorTests, theErrorSaysWhatToDo) {
    CompositeMeetRepositoryError const error(CompositeMeetRepositoryError::Case::noRepositoryAvailable);
    EXPECT_EQ(error, CompositeMeetRepositoryError(CompositeMeetRepositoryError::Case::noRepositoryAvailable));
    EXPECT_STREQ(error.what(),
                 "There is no source of meets to write to. Nothing was stored; set up a calendar first.");
}

} // namespace
} // namespace Meetings
