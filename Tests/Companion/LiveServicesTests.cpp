#include "Applications/Composition/LiveServices.h"

#include "Platform/Resources/ColorProvider.h"
#include "Platform/Resources/TextProvider.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>

namespace {

TEST(LiveServicesTests, onlyThePackagesBundlesFollowTheOverride) {
    TemporaryFolder const elsewhere;
    elsewhere.write("WidgetExtension_WidgetExtension.bundle/en.lproj/Localizable.strings",
                    "\"schedule-widget-display-name\" = \"Elsewhere\";\n");
    elsewhere.write("Meetings_Meetings.bundle/en.lproj/Localizable.strings",
                    "\"eventkit-meet-untitled\" = \"Elsewhere\";\n");
    for (auto const* const variable : {"PACKAGE_RESOURCE_BUNDLE_PATH", "PACKAGE_RESOURCE_BUNDLE_URL"}) {
        SCOPED_TRACE(variable);
        Composition::LiveServices services(
            Foundation::Environment({{variable, elsewhere.path()}, {"LANG", "en_US.UTF-8"}}));
        EXPECT_EQ(services.widgetTexts()->text("schedule-widget-display-name"), "Schedule");
        EXPECT_EQ(services.meetingsTexts()->text("eventkit-meet-untitled"), "Elsewhere");
    }
}

TEST(LiveServicesTests, theWidgetsColoursAreThoseOfItsOwnBundle) {
    TemporaryFolder const elsewhere;
    elsewhere.write("WidgetExtension_WidgetExtension.bundle/Colors.json",
                    R"({"AccentColor": {"light": "#FFFFFF", "dark": "#FFFFFF"}})");
    Composition::LiveServices services(
        Foundation::Environment({{"PACKAGE_RESOURCE_BUNDLE_PATH", elsewhere.path()}}));
    auto const colors = services.widgetColors();
    EXPECT_EQ(colors->color("AccentColor", Platform::ColorScheme::light),
              (std::array{0x5C / 255.0, 0xC2 / 255.0, 0xC6 / 255.0}));
    EXPECT_EQ(colors->color("AccentColor", Platform::ColorScheme::dark),
              (std::array{0x69 / 255.0, 0x6F / 255.0, 0x9B / 255.0}));
}

} // namespace
