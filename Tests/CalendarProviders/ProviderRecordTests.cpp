#include "CalendarProviders/AccountProviderEnum.h"
#include "CalendarProviders/CalendarProviderRealmMapper.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace CalendarProviders {
namespace {

CalendarProviderEntity someProvider() {
    return {
        .capId = "eventKit",
        .capProvider = AccountProviderEnum::eventKit,
        .capDisplayName = "Calendars on this computer",
        .capDescription = "Work and home",
        .capEmail = "ana@host",
        .capIsEnabled = true,
        .capRegisteredAt = {.secondsSince1970 = 1700000000.5},
    };
}

TEST(AccountProviderEnumTests, theOneKindHasItsTexts) {
    EXPECT_EQ(allAccountProviders, std::array{AccountProviderEnum::eventKit});
    EXPECT_EQ(Foundation::rawValue(AccountProviderEnum::eventKit), "eventKit");
    EXPECT_EQ(displayName(AccountProviderEnum::eventKit), "iOS calendar");
    EXPECT_EQ(iconSystemName(AccountProviderEnum::eventKit), "icloud.fill");
    EXPECT_FALSE(allowsMultipleAccounts(AccountProviderEnum::eventKit));
}

TEST(AccountProviderEnumTests, aTextIsMatchedExactly) {
    EXPECT_EQ(Foundation::fromRawValue<AccountProviderEnum>("eventKit"), AccountProviderEnum::eventKit);
    EXPECT_EQ(Foundation::fromRawValue<AccountProviderEnum>("EventKit"), std::nullopt);
    EXPECT_EQ(Foundation::fromRawValue<AccountProviderEnum>(""), std::nullopt);
}

TEST(CalendarProviderRealmMapperTests, everyFieldIsCopiedIntoTheModel) {
    auto const model = CalendarProviderRealmMapper::toRealmModel(someProvider());
    EXPECT_EQ(model.capId, "eventKit");
    EXPECT_EQ(model.capProvider, "eventKit");
    EXPECT_EQ(model.capDisplayName, "Calendars on this computer");
    EXPECT_EQ(model.capDescription, "Work and home");
    EXPECT_EQ(model.capEmail, "ana@host");
    EXPECT_TRUE(model.capIsEnabled);
    EXPECT_EQ(model.capRegisteredAt, (Foundation::Date{.secondsSince1970 = 1700000000.5}));
}

TEST(CalendarProviderRealmMapperTests, everyFieldComesBackFromTheModel) {
    auto const model = CalendarProviderRealmMapper::toRealmModel(someProvider());
    auto const entity = CalendarProviderRealmMapper::toEntity(model);
    ASSERT_TRUE(entity.has_value());
    EXPECT_EQ(entity->capId, "eventKit");
    EXPECT_EQ(entity->capProvider, AccountProviderEnum::eventKit);
    EXPECT_EQ(entity->capDisplayName, "Calendars on this computer");
    EXPECT_EQ(entity->capDescription, "Work and home");
    EXPECT_EQ(entity->capEmail, "ana@host");
    EXPECT_TRUE(entity->capIsEnabled);
    EXPECT_EQ(entity->capRegisteredAt, (Foundation::Date{.secondsSince1970 = 1700000000.5}));
}

TEST(CalendarProviderRealmMapperTests, aStoredKindThatIsNotKnownMapsToNothing) {
    auto model = CalendarProviderRealmMapper::toRealmModel(someProvider());
    model.capProvider = "EventKit";
    EXPECT_FALSE(CalendarProviderRealmMapper::toEntity(model).has_value());
    model.capProvider = "";
    EXPECT_FALSE(CalendarProviderRealmMapper::toEntity(model).has_value());
    EXPECT_FALSE(CalendarProviderRealmMapper::toEntity(CalendarProviderRealmModel{}).has_value());
}

TEST(CalendarProviderRealmModelTests, theDatabaseKeepsEveryFieldUnderItsName) {
    auto const object = CalendarProviderRealmMapper::toRealmModel(someProvider()).toPersisted();
    EXPECT_EQ(
        object,
        (Platform::PersistedObject{
            .typeName = "CalendarProviderRealmModel",
            .primaryKey = "eventKit",
            .properties =
                {
                    {.name = "capProvider", .value = std::string("eventKit")},
                    {.name = "capDisplayName", .value = std::string("Calendars on this computer")},
                    {.name = "capDescription", .value = std::string("Work and home")},
                    {.name = "capEmail", .value = std::string("ana@host")},
                    {.name = "capIsEnabled", .value = true},
                    {.name = "capRegisteredAt", .value = Foundation::Date{.secondsSince1970 = 1700000000.5}},
                },
        }));
}

TEST(CalendarProviderRealmModelTests, aPropertyThatIsMissingOrOfAnotherTypeStaysEmpty) {
    auto const model = CalendarProviderRealmModel::fromPersisted({
        .typeName = "CalendarProviderRealmModel",
        .primaryKey = "a",
        .properties = {{.name = "capEmail", .value = true},
                       {.name = "capIsEnabled", .value = std::string("yes")}},
    });
    EXPECT_EQ(model.capId, "a");
    EXPECT_EQ(model.capProvider, "");
    EXPECT_EQ(model.capDisplayName, "");
    EXPECT_EQ(model.capDescription, "");
    EXPECT_EQ(model.capEmail, "");
    EXPECT_FALSE(model.capIsEnabled);
    EXPECT_EQ(model.capRegisteredAt, (Foundation::Date{.secondsSince1970 = 0}));
}

} // namespace
} // namespace CalendarProviders
