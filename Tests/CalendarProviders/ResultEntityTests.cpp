#include "CalendarProviders/ResultEntity.h"

#include "Foundation/UUID.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CalendarProviders {
namespace {

TEST(ResultEntityTests, everyResultHasAnIdentityOfItsOwn) {
    auto const first = succeeded();
    auto const second = succeeded();
    EXPECT_NE(first.guidId, second.guidId);
    EXPECT_TRUE(Foundation::UUID::fromText(first.guidId).has_value());
}

TEST(ResultEntityTests, aSuccessCarriesItsDataAndNoMessages) {
    auto const result = succeeded(std::string("payload"));
    EXPECT_TRUE(result.result);
    EXPECT_EQ(result.id, 0);
    EXPECT_EQ(result.message, "");
    EXPECT_EQ(result.dataAs<std::string>(), "payload");
    EXPECT_EQ(result.databaseMessage, std::nullopt);
    EXPECT_EQ(result.stackTrace, std::nullopt);
    EXPECT_EQ(result.controllerMessage, std::nullopt);
    EXPECT_EQ(result.applicationMessage, std::nullopt);
    EXPECT_EQ(result.domainMessage, std::nullopt);
    EXPECT_EQ(result.infrastructureMessage, std::nullopt);
}

TEST(ResultEntityTests, dataOfAnotherTypeThanTheReaderWantsIsAbsent) {
    auto const result = succeeded(std::vector<std::uint8_t>{1, 2});
    EXPECT_EQ(result.dataAs<std::string>(), std::nullopt);
    EXPECT_EQ(result.dataAs<std::vector<std::uint8_t>>(), (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(succeeded().dataAs<std::string>(), std::nullopt);
}

TEST(ResultEntityTests, aFailureCarriesTheMessageOfItsLayerAlone) {
    auto const database = failed({.databaseMessage = "no location"});
    EXPECT_FALSE(database.result);
    EXPECT_FALSE(database.data.has_value());
    EXPECT_EQ(database.message, "");
    EXPECT_EQ(database.databaseMessage, "no location");
    EXPECT_EQ(database.domainMessage, std::nullopt);
    EXPECT_EQ(database.infrastructureMessage, std::nullopt);

    EXPECT_EQ(failed({.domainMessage = "unknown"}).domainMessage, "unknown");
    EXPECT_EQ(failed({.domainMessage = "unknown"}).databaseMessage, std::nullopt);
    EXPECT_EQ(failed({.infrastructureMessage = "denied"}).infrastructureMessage, "denied");
    EXPECT_EQ(failed({.infrastructureMessage = "denied"}).domainMessage, std::nullopt);
}

TEST(ResultEntityTests, aLayerAboveTheStorageSaysWhatTheStorageSaid) {
    auto const lifted = failedAbove(failed({.databaseMessage = "no location"}), "something else");
    EXPECT_FALSE(lifted.result);
    EXPECT_EQ(lifted.infrastructureMessage, "no location");
    EXPECT_EQ(lifted.databaseMessage, std::nullopt);
    EXPECT_EQ(lifted.domainMessage, std::nullopt);
}

TEST(ResultEntityTests, whereTheStorageSaidNothingTheLayerAboveHasItsOwnWords) {
    // Also above a success that carried something else than was wanted.
    for (auto const& silent : {failed({}), failed({.domainMessage = "a rule"}), succeeded(1)}) {
        auto const above = failedAbove(silent, "Failed to open the database");
        EXPECT_FALSE(above.result);
        EXPECT_FALSE(above.data.has_value());
        EXPECT_EQ(above.infrastructureMessage, "Failed to open the database");
        EXPECT_EQ(above.domainMessage, std::nullopt);
    }
}

} // namespace
} // namespace CalendarProviders
