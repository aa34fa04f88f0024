#include "Applications/Composition/LiveServices.h"

#include "Platform/Resources/TextProvider.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

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

} // namespace
