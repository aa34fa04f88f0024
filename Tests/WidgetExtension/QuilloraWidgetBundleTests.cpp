#include "WidgetExtension/QuilloraWidgetBundle.h"

#include "Tests/WidgetExtension/WidgetFixtures.h"

#include <gtest/gtest.h>

#include <vector>

namespace WidgetExtension {
namespace {

using Platform::WidgetFamily;

class QuilloraWidgetBundleTests : public testing::Test {
protected:
    WidgetSurroundings around;
    QuilloraWidgetBundle bundle{around.services()};
    ScheduleWidget const& widget = bundle.body().front();
};

TEST_F(QuilloraWidgetBundleTests, theBundleHoldsTheScheduleWidgetAlone) {
    EXPECT_EQ(bundle.body().size(), 1U);
    EXPECT_EQ(widget.kind, "ScheduleWidget");
}

TEST_F(QuilloraWidgetBundleTests, theConfigurationNamesKindTextsAndFamiliesInOrder) {
    auto const configuration = widget.configuration();
    EXPECT_EQ(configuration.kind, "ScheduleWidget");
    EXPECT_EQ(configuration.displayNameKey, "schedule-widget-display-name");
    EXPECT_EQ(configuration.descriptionKey, "schedule-widget-description");
    EXPECT_EQ(
        configuration.supportedFamilies,
        (std::vector{WidgetFamily::systemSmall, WidgetFamily::systemMedium, WidgetFamily::systemLarge}));
}

TEST_F(QuilloraWidgetBundleTests, theContentOfAnEntryIsItsFaceAsItStandsNow) {
    ScheduleWidgetEntry const entry = {
        .date = around.clock->now(), .meetings = {}, .hasAccessError = false, .dayOffset = 0};
    around.clock->set(around.clock->now().addingTimeInterval(hour));
    auto const view = widget.content(entry, WidgetFamily::systemSmall, Platform::ColorScheme::dark);
    EXPECT_EQ(view.entry, entry);
    EXPECT_EQ(view.now, around.clock->now());
    EXPECT_EQ(view.family, WidgetFamily::systemSmall);
    EXPECT_EQ(view.colorScheme, Platform::ColorScheme::dark);
    EXPECT_EQ(view.locale.identifier, "en");
    EXPECT_EQ(view.calendar, Meetings::utcCalendar());
    EXPECT_EQ(view.layout().family, WidgetFamily::systemSmall);
}

TEST_F(QuilloraWidgetBundleTests, theProviderAnswersFromTheSameServices) {
    around.setOffset("3");
    EXPECT_EQ(widget.timelineProvider()->dayOffset(), 3);
}

} // namespace
} // namespace WidgetExtension
