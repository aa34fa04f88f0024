#include "Applications/Companion/PrintedDay.h"

#include "Applications/Companion/AskedOnceAppearance.h"
#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/DayJSON.h"
#include "Applications/Companion/FaceText.h"
#include "Applications/Companion/FollowedLines.h"
#include "Applications/Companion/LiveDay.h"
#include "Applications/Companion/LiveTexts.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/StatusBarLine.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "WidgetExtension/QuilloraWidgetBundle.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <utility>

namespace Companion {

namespace {

// An empty face has reasons that it cannot tell itself.
void reportHints(Invocation const& invocation, Composition::LiveServices& services, ShownDay const& day) {
    auto const accounts = CalendarProviders::EnabledCalendarAccountsStore::load(*services.files());
    if (!accounts.contains(CalendarProviders::AccountProviderEnum::eventKit)) {
        invocation.console.report(whyNotSwitchedOn(services));
    } else if (day.entry.hasAccessError) {
        invocation.console.report(whyNoAccess(services, Texts::accessIsMissing()));
    }
}

FollowedPage sameText(std::string const& text) {
    return {.text = text, .essence = text};
}

// Nobody who is told of each change needs to know when to ask again. A day's date moves with the clock, which
// is no change of the day.
FollowedPage followedJSON(WidgetExtension::ScheduleWidgetView const& view) {
    auto const layout = view.layout();
    auto timeless = view.entry;
    timeless.date = view.calendar.startOfDay(view.calendar.day(timeless.date));
    return {.text = plainJSON(dayJSON(view.entry, {}, layout)) + "\n",
            .essence = plainJSON(dayJSON(timeless, {}, layout))};
}

// A view for who follows the day; pages of text are parted by a blank line.
FollowedPage followedPage(WidgetExtension::ScheduleWidgetView const& view, Invocation const& invocation,
                          DayRequest const& request) {
    if (request.writesStatusBar) return sameText(plainJSON(statusBarLine(view)) + "\n");
    if (request.writesJSON) return followedJSON(view);
    return sameText(faceText(view.layout(), {.showsColors = invocation.console.showsColors(),
                                             .columns = invocation.console.columns()}) +
                    "\n");
}

void checkReach(std::optional<std::int64_t> offset) {
    constexpr auto furthest = WidgetExtension::ScheduleWidgetDayOffsetStore::maxOffset;
    if (offset && (*offset < -furthest || *offset > furthest))
        throw CommandError::wrongUse(Texts::beyondTheButtons(*offset, furthest));
}

ExitCode follow(Invocation const& invocation, DayRequest const& request) {
    checkReach(request.day.offset);
    auto const live = liveServices(invocation);
    printFollowing(invocation, *live, request.day.offset, request.family,
                   [&](WidgetExtension::ScheduleWidgetView const& view) {
                       return followedPage(view, invocation, request);
                   });
    return ExitCode::done;
}

// What shows no colour is the same in both schemes, and the desktop is a round trip over the bus away.
std::optional<Platform::ColorScheme> schemeWithoutAsking(Invocation const& invocation,
                                                         DayRequest const& request) {
    bool const showsColors = drawsPictures(invocation.values) || request.writesJSON ||
                             (request.writesText && invocation.console.showsColors());
    if (request.scheme || showsColors) return request.scheme;
    return Platform::ColorScheme::light;
}

} // namespace

AskedDay askedDay(Invocation const& invocation, DayRequest const& request) {
    auto const refresh = std::make_shared<CalendarRefresh>(invocation.environment);
    auto live = liveServices(
        invocation, {.fixedMoment = request.at, .calendarLookDue = [refresh] { refresh->fallDue(); }});
    auto loop = std::make_unique<Foundation::TaskLoop>();
    auto services = live->scheduleWidgetServices(loop->executor());
    services.appearance =
        std::make_shared<AskedOnceAppearance>(services.appearance, schemeWithoutAsking(invocation, request));
    auto day = shownDay(services, *loop, offsetOf(request.day, services));
    return {.live = std::move(live),
            .loop = std::move(loop),
            .services = std::move(services),
            .day = std::move(day),
            .scheme = request.scheme.value_or(Platform::ColorScheme::light),
            .refresh = refresh};
}

void printDay(Invocation const& invocation, DayRequest const& request, AskedDay& asked) {
    auto const& [live, loop, services, day, scheme, refresh] = asked;
    auto const layout = faceOf(services, day, request.family, scheme);
    if (request.writesJSON) invocation.console.writeLine(plainJSON(dayJSON(day.entry, day.policy, layout)));
    if (request.writesStatusBar) {
        WidgetExtension::QuilloraWidgetBundle const bundle(services);
        auto const view = bundle.body().front().content(day.entry, request.family, scheme);
        invocation.console.writeLine(plainJSON(statusBarLine(view)));
    }
    if (request.writesText) {
        invocation.console.write(faceText(layout, {.showsColors = invocation.console.showsColors(),
                                                   .columns = invocation.console.columns()}));
    }
    reportHints(invocation, *live, day);
}

ExitCode showDay(Invocation const& invocation) {
    auto const request = dayRequest(invocation);
    if (invocation.values.has("--live")) return showLiveDay(invocation, request.family);
    if (invocation.values.has("--follow")) return follow(invocation, request);
    auto asked = askedDay(invocation, request);
    printDay(invocation, request, asked);
    return ExitCode::done;
}

} // namespace Companion
