#include "CalendarProviders/EventKitPermissionRepositoryImpl.h"
#include "CalendarProviders/LiveEventStoreAuthorizing.h"
#include "Platform/EventStore/InMemoryEventStore.h"
#include "Tests/CalendarProviders/ProviderFixtures.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>

namespace CalendarProviders {
namespace {

using namespace Fixtures;
using Platform::AccessAnswer;
using Platform::EKAuthorizationStatus;
using Platform::InMemoryEventStore;

ResultEntity requestAccess(std::shared_ptr<InMemoryEventStore> store) {
    EventKitPermissionRepositoryImpl repository(std::shared_ptr<Platform::EKEventStore>(std::move(store)));
    return Foundation::runTask(repository.requestAccess(AccountProviderEnum::eventKit));
}

TEST(EventKitPermissionRepositoryTests, withFullAccessThePersonIsNotAskedAgain) {
    auto const store = std::make_shared<InMemoryEventStore>();
    store->setAuthorizationStatus(EKAuthorizationStatus::fullAccess);
    store->setAccessAnswer(AccessAnswer::notGranted);
    expectPlainSuccess(requestAccess(store));
    EXPECT_EQ(store->accessRequests(), 0);
}

TEST(EventKitPermissionRepositoryTests, anyOtherDecisionIsADenialWithoutAsking) {
    struct Decision {
        char const* name;
        std::int64_t status;
    };
    for (auto const& decision : std::to_array<Decision>({
             {"restricted", 1},
             {"denied", 2},
             {"write only", 4},
             {"a status of a later version", 5},
             {"a negative status", -1},
         })) {
        SCOPED_TRACE(decision.name);
        auto const store = std::make_shared<InMemoryEventStore>();
        store->setAuthorizationStatus(static_cast<EKAuthorizationStatus>(decision.status));
        store->setAccessAnswer(AccessAnswer::granted);
        expectFailure(requestAccess(store), {.infrastructure = "Calendar access was denied"});
        EXPECT_EQ(store->accessRequests(), 0);
    }
}

TEST(EventKitPermissionRepositoryTests, whileNothingIsDecidedThePersonsAnswerCounts) {
    auto const store = std::make_shared<InMemoryEventStore>();
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    store->setAccessAnswer(AccessAnswer::granted);
    expectPlainSuccess(requestAccess(store));
    EXPECT_EQ(store->accessRequests(), 1);
}

TEST(EventKitPermissionRepositoryTests, anAnswerThatIsNoYesIsADenial) {
    for (auto const answer : {AccessAnswer::notGranted, AccessAnswer::unavailable}) {
        auto const store = std::make_shared<InMemoryEventStore>();
        store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
        store->setAccessAnswer(answer);
        expectFailure(requestAccess(store), {.infrastructure = "Calendar access was denied"});
        EXPECT_EQ(store->accessRequests(), 1);
    }
}

TEST(EventKitPermissionRepositoryTests, aRequestThatFailsYieldsItsOwnText) {
    auto const store = std::make_shared<InMemoryEventStore>();
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    store->setAccessAnswer(AccessAnswer::failing);
    expectFailure(requestAccess(store), {.infrastructure = "The access request failed."});
    EXPECT_EQ(store->accessRequests(), 1);
}

/// A store that is substituted at the narrow seam.
class GivenAuthorization final : public EventStoreAuthorizing {
public:
    Platform::EKAuthorizationStatus authorizationStatus() override {
        return EKAuthorizationStatus::notDetermined;
    }
    Foundation::Task<bool> requestFullAccessToEvents() override {
        ++requests;
        co_return true;
    }

    int requests = 0;
};

TEST(EventKitPermissionRepositoryTests, aSubstituteForTheStoreIsAskedInItsPlace) {
    auto const store = std::make_shared<GivenAuthorization>();
    EventKitPermissionRepositoryImpl repository{std::shared_ptr<EventStoreAuthorizing>(store)};
    expectPlainSuccess(Foundation::runTask(repository.requestAccess(AccountProviderEnum::eventKit)));
    EXPECT_EQ(store->requests, 1);
}

/// A store that fails in one of its calls, with an exception of whatever type.
class FailingAuthorization final : public EventStoreAuthorizing {
public:
    enum class Fault { status, request, requestWithoutText };
    explicit FailingAuthorization(Fault fault) : fault(fault) {}

    Platform::EKAuthorizationStatus authorizationStatus() override {
        if (fault == Fault::status) throw Platform::EKError("The calendars have no home.");
        return EKAuthorizationStatus::notDetermined;
    }
    Foundation::Task<bool> requestFullAccessToEvents() override {
        if (fault == Fault::requestWithoutText) throw 7;
        throw Platform::EKError("The question was not put.");
        co_return true;
    }

private:
    Fault fault;
};

TEST(EventKitPermissionRepositoryTests, noFailureOfTheStoreLeavesIt) {
    using enum FailingAuthorization::Fault;
    struct Row {
        char const* name;
        FailingAuthorization::Fault fault;
        char const* message;
    };
    for (auto const& row : std::to_array<Row>({
             {"the status", status, "The calendars have no home."},
             {"the request", request, "The question was not put."},
             {"the request, without a text", requestWithoutText, "Calendar access was denied"},
         })) {
        SCOPED_TRACE(row.name);
        EventKitPermissionRepositoryImpl repository{
            std::shared_ptr<EventStoreAuthorizing>(std::make_shared<FailingAuthorization>(row.fault))};
        auto const result = Foundation::runTask(repository.requestAccess(AccountProviderEnum::eventKit));
        expectFailure(result, {.infrastructure = row.message});
    }
}

TEST(LiveEventStoreAuthorizingTests, itIsTheStoreItself) {
    auto const store = std::make_shared<InMemoryEventStore>();
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    LiveEventStoreAuthorizing live(store);
    EXPECT_EQ(live.authorizationStatus(), EKAuthorizationStatus::notDetermined);
    EXPECT_TRUE(Foundation::runTask(live.requestFullAccessToEvents()));
    EXPECT_EQ(live.authorizationStatus(), EKAuthorizationStatus::fullAccess);
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    store->setAccessAnswer(AccessAnswer::failing);
    EXPECT_THROW(static_cast<void>(Foundation::runTask(live.requestFullAccessToEvents())), Platform::EKError);
}

} // namespace
} // namespace CalendarProviders
