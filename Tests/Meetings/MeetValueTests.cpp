#include "Meetings/EventKitAccountCalendarsEntity.h"
#include "Meetings/EventKitSourceTypeEnum.h"
#include "Meetings/MeetColor.h"
#include "Meetings/MeetConfigEnum.h"
#include "Meetings/MeetRecurrenceFrequency.h"
#include "Meetings/MeetSource.h"
#include "Meetings/MeetSystemDesignEnum.h"
#include "Meetings/SystemAppearance.h"
#include "Platform/Appearance/FixedAppearance.h"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

namespace Meetings {
namespace {

using Foundation::fromRawValue;
using Foundation::rawValue;
using Platform::ColorScheme;
using Platform::EKSourceType;
using Platform::FixedAppearance;

TEST(MeetColorTests, coloursAreEqualOnlyWhenSpelledAlike) {
    EXPECT_EQ(MeetColor{.hexValue = "#5CC2C6"}, MeetColor{.hexValue = "#5CC2C6"});
    EXPECT_NE(MeetColor{.hexValue = "#5cc2c6"}, MeetColor{.hexValue = "#5CC2C6"});
}

TEST(MeetRecurrenceFrequencyTests, everyCaseHasItsText) {
    EXPECT_EQ(rawValue(MeetRecurrenceFrequency::none), "none");
    EXPECT_EQ(rawValue(MeetRecurrenceFrequency::daily), "daily");
    EXPECT_EQ(rawValue(MeetRecurrenceFrequency::weekly), "weekly");
    EXPECT_EQ(rawValue(MeetRecurrenceFrequency::monthly), "monthly");
}

TEST(MeetRecurrenceFrequencyTests, aTextIsMatchedExactly) {
    EXPECT_EQ(fromRawValue<MeetRecurrenceFrequency>("weekly"), MeetRecurrenceFrequency::weekly);
    EXPECT_EQ(fromRawValue<MeetRecurrenceFrequency>("Weekly"), std::nullopt);
    EXPECT_EQ(fromRawValue<MeetRecurrenceFrequency>("weekly "), std::nullopt);
    EXPECT_EQ(fromRawValue<MeetRecurrenceFrequency>("wee\u212Aly"), std::nullopt);
    EXPECT_EQ(fromRawValue<MeetRecurrenceFrequency>("yearly"), std::nullopt);
    EXPECT_EQ(fromRawValue<MeetRecurrenceFrequency>(""), std::nullopt);
}

TEST(MeetSourceTests, everyCaseHasItsText) {
    EXPECT_EQ(rawValue(MeetSource::eventKit), "eventKit");
    EXPECT_EQ(rawValue(MeetSource::backend), "backend");
}

TEST(MeetSourceTests, aTextIsMatchedExactly) {
    EXPECT_EQ(fromRawValue<MeetSource>("backend"), MeetSource::backend);
    EXPECT_EQ(fromRawValue<MeetSource>("EventKit"), std::nullopt);
    EXPECT_EQ(fromRawValue<MeetSource>(""), std::nullopt);
}

TEST(EventKitAccountCalendarsEntityTests, anAccountAndACalendarAreIdentifiedByTheirOwnIds) {
    EventKitAccountCalendarsEntity const account = {
        .eacId = "a1",
        .eacAccountTitle = "Work",
        .eacAccountType = "Local",
        .eacCalendars = {{.eciId = "a1/c", .eciTitle = "C", .eciColorHex = "#336699"}},
    };
    EXPECT_EQ(account.id(), "a1");
    EXPECT_EQ(account.eacCalendars.front().id(), "a1/c");
}

TEST(EventKitSourceTypeEnumTests, everyKindHasItsSpanishName) {
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType::local), "Local");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType::exchange), "Exchange");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType::calDAV), "CalDAV");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType::mobileMe), "iCloud");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType::subscribed), "Suscrito");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType::birthdays), "Cumpleaños");
}

TEST(EventKitSourceTypeEnumTests, theEnumeratorsBearTheStoresNumbers) {
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType{0}), "Local");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType{3}), "iCloud");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType{5}), "Cumpleaños");
}

TEST(EventKitSourceTypeEnumTests, theBirthdaysNameIsComposed) {
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType::birthdays).size(), 11U);
}

TEST(EventKitSourceTypeEnumTests, anUnknownKindHasANameToo) {
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType{6}), "Desconocido");
    EXPECT_EQ(EventKitSourceTypeEnum::description(EKSourceType{-1}), "Desconocido");
}

TEST(MeetConfigEnumTests, theConstantsAreThoseOfTheSharedFormats) {
    EXPECT_EQ(MeetConfigEnum::nativeCalendarName, "Quillora");
    EXPECT_EQ(MeetConfigEnum::nativeCalendarIdentifier, "quillora-native-calendar");
    EXPECT_EQ(MeetConfigEnum::loggerSubsystem, "com.zentorik.quillora");
}

TEST(SystemAppearanceTests, onlyADarkDesktopIsDark) {
    EXPECT_TRUE(SystemAppearance::isDark(FixedAppearance(ColorScheme::dark)));
    EXPECT_FALSE(SystemAppearance::isDark(FixedAppearance(ColorScheme::light)));
    EXPECT_FALSE(SystemAppearance::isDark(FixedAppearance()));
}

TEST(MeetSystemDesignEnumTests, theDefaultColourFollowsTheDesktopAtEveryRead) {
    FixedAppearance desktop;
    EXPECT_EQ(MeetSystemDesignEnum::defaultColorHex(desktop), "#5CC2C6");
    desktop.set(ColorScheme::dark);
    EXPECT_EQ(MeetSystemDesignEnum::defaultColorHex(desktop), "#4FA8AC");
    desktop.set(ColorScheme::light);
    EXPECT_EQ(MeetSystemDesignEnum::defaultColorHex(desktop), "#5CC2C6");
}

} // namespace
} // namespace Meetings
