#include "Applications/Companion/AskedOnceAppearance.h"
#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/CalendarRefresh.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/DayJSON.h"
#include "Applications/Companion/DayWithBackend.h"
#include "Applications/Companion/FaceText.h"
#include "Applications/Companion/FollowedLines.h"
#include "Applications/Companion/LiveDay.h"
#include "Applications/Companion/LiveTexts.h"
#include "Applications/Companion/OutputFile.h"
#include "Applications/Companion/PictureStyle.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/ShownDay.h"
#include "Applications/Companion/StatusBarLine.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Platform/Clock/Clock.h"
#include "Platform/Face/FacePainter.h"
#include "Platform/Face/FacePicture.h"
#include "WidgetExtension/QuilloraWidgetBundle.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <array>
#include <charconv>
#include <filesystem>
#include <utility>
#include <vector>

namespace Companion {

namespace {

constexpr std::array pictureOptions = {"--png", "--svg", "--pdf"};
constexpr std::string_view standardOutput = "-";
constexpr double largestScale = 20;

// What the person asked for, checked as a whole before anything is read or written.
struct DayRequest {
    std::optional<Foundation::Date> at;
    DayChoice day;
    Platform::WidgetFamily family;
    std::optional<Platform::ColorScheme> scheme;
    double scale;
    bool writesText;
    bool writesJSON;
    bool writesStatusBar;
};

std::optional<Platform::ColorScheme> requestedScheme(ArgumentValues const& values) {
    auto const name = values.option("--scheme");
    if (!name) return std::nullopt;
    return *name == "dark" ? Platform::ColorScheme::dark : Platform::ColorScheme::light;
}

double requestedScale(ArgumentValues const& values) {
    auto const text = values.option("--scale").value_or("2");
    double scale = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), scale);
    // Written so that NaN, which no comparison holds for, is refused.
    bool const isUsable =
        error == std::errc() && end == text.data() + text.size() && scale > 0 && scale <= largestScale;
    if (!isUsable) throw CommandError::wrongUse(Texts::badScale(text, largestScale));
    return scale;
}

bool goesToStandardOutput(ArgumentValues const& values, std::string_view option) {
    return values.option(option) == standardOutput;
}

// The later of two pictures in one file would be the only one.
void checkPicturesAreApart(ArgumentValues const& values) {
    std::vector<std::pair<std::string_view, std::filesystem::path>> named;
    for (auto const* option : pictureOptions) {
        auto const path = values.option(option);
        if (!path || path == standardOutput) continue;
        auto const file = absolutePath(*path);
        for (auto const& [other, otherFile] : named)
            if (isSameOutput(otherFile, file)) throw CommandError::wrongUse(Texts::sameOutput(other, option));
        named.emplace_back(option, file);
    }
}

void checkOutputs(ArgumentValues const& values, DayRequest const& request) {
    int onStandardOutput =
        (request.writesText ? 1 : 0) + (request.writesJSON ? 1 : 0) + (request.writesStatusBar ? 1 : 0);
    for (auto const* option : pictureOptions) {
        auto const path = values.option(option);
        if (!path) continue;
        if (goesToStandardOutput(values, option)) {
            ++onStandardOutput;
        } else if (auto const reason = whyNotAnOutputFile(absolutePath(*path))) {
            throw CommandError::wrongUse(*reason);
        } else if (isStandardOutput(absolutePath(*path))) {
            ++onStandardOutput;
        }
    }
    checkPicturesAreApart(values);
    if (onStandardOutput > 1) throw CommandError::wrongUse(Texts::oneOutputAtATime());
}

DayRequest requestOf(Invocation const& invocation) {
    auto const& values = invocation.values;
    Foundation::Calendar const calendar(Foundation::TimeZone::current(invocation.environment));
    bool const drawsPictures = values.has("--png") || values.has("--svg") || values.has("--pdf");
    bool const writesJSON = values.has("--json");
    bool const writesStatusBar = values.has("--waybar");
    DayRequest request{
        .at = std::nullopt,
        .day = dayChoice(values),
        .family =
            *Foundation::fromRawValue<Platform::WidgetFamily>(values.option("--family").value_or("large")),
        .scheme = requestedScheme(values),
        .scale = requestedScale(values),
        .writesText = values.has("--text") || (!drawsPictures && !writesJSON && !writesStatusBar),
        .writesJSON = writesJSON,
        .writesStatusBar = writesStatusBar,
    };
    if (auto const text = values.option("--at")) request.at = moment("--at", *text, calendar);
    checkOutputs(values, request);
    return request;
}

// What else is printed must not end up in a document or a picture.
OutputReader readerOf(DayRequest const& request) {
    return request.writesText ? OutputReader::person : OutputReader::program;
}

std::string picture(std::string_view option, Platform::FacePainter const& painter,
                    Platform::FaceLayout const& layout, double scale) {
    auto drawn = option == "--png"   ? Platform::FacePicture::png(painter, layout, scale)
                 : option == "--svg" ? Platform::FacePicture::svg(painter, layout)
                                     : Platform::FacePicture::pdf(painter, layout);
    if (!drawn) throw CommandError::failed(Texts::told(drawn.error()));
    return *std::move(drawn);
}

void writePictures(Invocation const& invocation, WidgetExtension::ScheduleWidgetServices const& services,
                   Platform::FaceLayout const& layout, double scale) {
    Platform::FacePainter const painter(pictureStyle(*services.appearance, services.region->currentLocale()));
    for (auto const* option : pictureOptions) {
        auto const path = invocation.values.option(option);
        if (!path) continue;
        auto const bytes = picture(option, painter, layout, scale);
        if (goesToStandardOutput(invocation.values, option)) {
            invocation.console.write(bytes);
        } else {
            writeOutputFile(absolutePath(*path), bytes);
        }
    }
}

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

ExitCode run(Invocation const& invocation) {
    auto const request = requestOf(invocation);
    if (invocation.values.has("--live")) return showLiveDay(invocation, request.family);
    if (invocation.values.has("--follow")) return follow(invocation, request);
    bool isLookDue = false;
    auto const live =
        liveServices(invocation, {.fixedMoment = request.at, .calendarLookDue = [&] { isLookDue = true; }});
    Foundation::TaskLoop loop;
    auto services = live->scheduleWidgetServices(loop.executor());
    services.appearance = std::make_shared<AskedOnceAppearance>(services.appearance, request.scheme);

    auto day = shownDay(services, loop, offsetOf(request.day, services));
    if (invocation.values.has("--with-backend"))
        day = withBackend(invocation, *live, services, std::move(day), readerOf(request));
    bool const drawsPictures =
        invocation.values.has("--png") || invocation.values.has("--svg") || invocation.values.has("--pdf");
    // Only a picture shows the scheme; for text alone the desktop need not be asked.
    auto const scheme = drawsPictures
                            ? services.appearance->colorScheme().value_or(Platform::ColorScheme::light)
                            : request.scheme.value_or(Platform::ColorScheme::light);
    auto const layout = faceOf(services, day, request.family, scheme);

    if (drawsPictures) writePictures(invocation, services, layout, request.scale);
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
    if (isLookDue) startCalendarRefresh(invocation.environment);
    return ExitCode::done;
}

} // namespace

Command dayCommand() {
    return {
        .path = "day",
        .summary = Texts::text("day-summary"),
        .description = Texts::text("day-description"),
        .options =
            withDayChoice({{.name = "--family",
                            .valueName = "FAMILY",
                            .help = Texts::text("day-option-family"),
                            .choices = {"small", "medium", "large"}},
                           {.name = "--at",
                            .valueName = "MOMENT",
                            .help = Texts::text("day-option-at"),
                            .kind = ValueKind::moment},
                           {.name = "--with-backend", .help = Texts::text("day-option-with-backend")},
                           {.name = "--text", .help = Texts::text("day-option-text")},
                           {.name = "--json", .help = Texts::text("day-option-json")},
                           {.name = "--waybar", .help = Texts::text("day-option-waybar")},
                           {.name = "--follow",
                            .help = Texts::text("day-option-follow"),
                            .excludes = {"--day", "--at", "--with-backend", "--png", "--svg", "--pdf"}},
                           {.name = "--live",
                            .help = Texts::text("day-option-live"),
                            .excludes = {"--offset", "--day", "--at", "--with-backend", "--text", "--json",
                                         "--waybar", "--follow", "--png", "--svg", "--pdf"}},
                           {.name = "--png",
                            .valueName = "FILE",
                            .help = Texts::text("day-option-png"),
                            .kind = ValueKind::file},
                           {.name = "--svg",
                            .valueName = "FILE",
                            .help = Texts::text("day-option-svg"),
                            .kind = ValueKind::file},
                           {.name = "--pdf",
                            .valueName = "FILE",
                            .help = Texts::text("day-option-pdf"),
                            .kind = ValueKind::file},
                           {.name = "--scheme",
                            .valueName = "SCHEME",
                            .help = Texts::text("day-option-scheme"),
                            .choices = {"light", "dark"}},
                           {.name = "--scale",
                            .valueName = "S",
                            .help = Texts::text("day-option-scale"),
                            .kind = ValueKind::number}}),
        .examples = {{"quillora day", Texts::text("day-example-1")},
                     {"quillora day --offset 1", Texts::text("day-example-2")},
                     {"quillora day --day 2026-03-11 --json", Texts::text("day-example-3")},
                     {"quillora day --with-backend", Texts::text("day-example-5")},
                     {"quillora day --family medium --scheme dark --png day.png",
                      Texts::text("day-example-4")},
                     {"quillora day --waybar --follow", Texts::text("day-example-follow")},
                     {"quillora day --live", Texts::text("day-example-live")}},
        .run = run,
    };
}

} // namespace Companion
