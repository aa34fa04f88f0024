#include "Tests/EventStore/EventStoreContract.h"

#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/GivenConsentPrompt.h"
#include "Platform/EventStore/InMemoryEventStore.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

using namespace Platform;

namespace {

std::shared_ptr<EKEventStore> fakeOfTheWorld() {
    auto const calendar = [](std::string const& name) {
        return EKCalendar{.calendarIdentifier = "here/" + name,
                          .title = name,
                          .cgColor = {.components = std::nullopt},
                          .sourceIdentifier = "here",
                          .allowsContentModifications = true};
    };
    std::vector<EKEvent> events;
    for (auto const& given : contractEvents()) {
        for (int number = 0; number < given.occurrences; ++number) {
            auto const shift = number * 86'400.0;
            EKEvent event{.eventIdentifier = "here/" + given.calendar + ":" + given.uid,
                          .calendarItemIdentifier = given.uid,
                          .title = given.title,
                          .startDate = at(given.startSeconds + shift),
                          .endDate = at(given.endSeconds + shift),
                          .isAllDay = given.isAllDay,
                          .calendar = std::make_shared<EKCalendar const>(calendar(given.calendar))};
            if (given.occurrences > 1) {
                event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::daily}};
                event.occurrenceKey = fmt::format("202603{:02}T150000Z", 10 + number);
            }
            events.push_back(std::move(event));
        }
    }
    auto store = std::make_shared<InMemoryEventStore>(
        std::vector{EKSource{.sourceIdentifier = "here",
                             .title = "Here",
                             .sourceType = EKSourceType::local,
                             .calendars = {calendar("alpha"), calendar("beta")}}},
        std::move(events));
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    return store;
}

std::string fileOf(ContractEvent const& event) {
    auto const* const form = event.isAllDay ? ";VALUE=DATE" : "";
    auto text =
        fmt::format("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Contract//EN\r\nBEGIN:VEVENT\r\nUID:{}\r\n"
                    "DTSTAMP:20260101T000000Z\r\nDTSTART{}:{}\r\nDTEND{}:{}\r\nSUMMARY:{}\r\n",
                    event.uid, form, event.start, form, event.end, event.title);
    if (event.occurrences > 1) text += fmt::format("RRULE:FREQ=DAILY;COUNT={}\r\n", event.occurrences);
    return text + "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

std::shared_ptr<EKEventStore> foldersOfTheWorld() {
    struct World {
        TemporaryFolder home;
        std::unique_ptr<FolderEventStore> store;
    };
    auto world = std::make_shared<World>();
    for (auto const& event : contractEvents()) {
        world->home.write("Here/" + event.calendar + "/" + event.uid + ".ics", fileOf(event));
    }
    auto const files = std::make_shared<PosixFileManager>(Foundation::Environment());
    CalendarStorePlaces const places{.configurationDirectory = world->home / "config",
                                     .nativeCalendar = world->home / "native"};
    EXPECT_TRUE(CalendarStoreConfiguration(places.configurationDirectory, files)
                    .add(world->home / "Here", std::nullopt)
                    .has_value());
    world->store = std::make_unique<FolderEventStore>(FolderEventStoreParts{
        .places = places,
        .files = files,
        .region = std::make_shared<FixedRegionSettings>(
            Foundation::Calendar(Foundation::TimeZone::named("Europe/Madrid").value()),
            Foundation::Locale{.identifier = "en"}),
        .fileSystemClock = std::make_shared<FixedClock>(at(dayStart)),
        .prompt = std::make_shared<GivenConsentPrompt>(ConsentAnswer::yes),
        .logger = Logger(std::make_shared<RecordingLogSink>(), "tests", "EventStore"),
    });
    return {world, world->store.get()};
}

using Titles = std::vector<std::string>;

} // namespace

TEST_P(EventStoreContract, sourcesListTheirCalendarsInOrder) {
    auto const store = GetParam().make();
    auto const sources = store->sources();
    ASSERT_EQ(sources.size(), 1U);
    EXPECT_EQ(sources[0].title, "Here");
    EXPECT_EQ(sources[0].sourceType, EKSourceType::local);
    ASSERT_EQ(sources[0].calendars.size(), 2U);
    EXPECT_EQ(sources[0].calendars[0].title, "alpha");
    EXPECT_EQ(sources[0].calendars[1].title, "beta");
    EXPECT_EQ(sources[0].calendars[0].sourceIdentifier, sources[0].sourceIdentifier);
    EXPECT_EQ(store->calendarsForEntityType(EKEntityType::event), sources[0].calendars);
}

TEST_P(EventStoreContract, thereAreNoCalendarsForReminders) {
    EXPECT_TRUE(GetParam().make()->calendarsForEntityType(EKEntityType::reminder).empty());
}

TEST_P(EventStoreContract, aCalendarIsFoundByItsIdentifierAlone) {
    auto const store = GetParam().make();
    auto const identifier = identifierOf(*store, "beta");
    ASSERT_TRUE(store->calendarWithIdentifier(identifier).has_value());
    EXPECT_EQ(store->calendarWithIdentifier(identifier)->title, "beta");
    EXPECT_EQ(store->calendarWithIdentifier("beta"), std::nullopt);
    EXPECT_EQ(store->calendarWithIdentifier(""), std::nullopt);
}

TEST_P(EventStoreContract, aDayHasWhatOverlapsIt) {
    auto const store = GetParam().make();
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd), (Titles{"Holiday", "Instant", "Meeting", "Series"}));
}

TEST_P(EventStoreContract, bothEndsOfTheIntervalLeaveOutWhatOnlyTouchesThem) {
    struct Row {
        char const* name;
        double start;
        double end;
        Titles titles;
    };
    auto const store = GetParam().make();
    auto const alpha = identifierOf(*store, "alpha");
    for (auto const& row : std::vector<Row>{
             {"ends where the interval starts", 1773223200, 1773223300, {}},
             {"ends a second after", 1773223199, 1773223300, {"Meeting"}},
             {"starts where the interval ends", 1773219500, 1773219600, {}},
             {"starts a second before", 1773219500, 1773219601, {"Meeting"}},
             {"spans the interval", 1773220000, 1773220001, {"Meeting"}},
             {"without length at the start", 1773230400, 1773230401, {"Instant"}},
             {"without length at the end", 1773230300, 1773230400, {}},
             {"without length inside", 1773230399, 1773230401, {"Instant"}},
             {"an interval in the past", 0, 1, {}},
         }) {
        EXPECT_EQ(titlesIn(*store, row.start, row.end, {{alpha}}), row.titles) << row.name;
    }
}

TEST_P(EventStoreContract, anAbsentCalendarListMeansAllAndAnEmptyOneNone) {
    auto const store = GetParam().make();
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd).size(), 4U);
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd, Titles{}), Titles{});
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd, {{identifierOf(*store, "alpha")}}),
              (Titles{"Instant", "Meeting"}));
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd, {{"unknown", identifierOf(*store, "beta")}}),
              (Titles{"Holiday", "Series"}));
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd, {{"unknown"}}), Titles{});
}

TEST_P(EventStoreContract, occurrencesShareTheIdentifierAndHaveKeysOfTheirOwn) {
    auto const store = GetParam().make();
    auto const events = store->eventsMatching(
        {.start = at(dayStart - 10 * 86'400), .end = at(dayEnd + 10 * 86'400), .calendars = {}});
    std::set<std::string> identifiers;
    std::set<std::string> keys;
    std::vector<double> starts;
    for (auto const& event : events) {
        if (event.title != "Series") continue;
        identifiers.insert(event.eventIdentifier.value_or("absent"));
        keys.insert(event.occurrenceKey.value_or("absent"));
        starts.push_back(event.startDate->secondsSince1970);
        EXPECT_EQ(event.endDate->timeIntervalSince(*event.startDate), 1800);
        EXPECT_EQ(event.recurrenceRules.size(), 1U);
    }
    std::ranges::sort(starts);
    EXPECT_EQ(identifiers, (std::set{identifierOf(*store, "beta") + ":series"}));
    EXPECT_EQ(keys, (std::set<std::string>{"20260310T150000Z", "20260311T150000Z", "20260312T150000Z"}));
    EXPECT_EQ(starts, (std::vector<double>{1773154800, 1773241200, 1773327600}));
}

TEST_P(EventStoreContract, everyEventIsWhole) {
    auto const store = GetParam().make();
    auto const events =
        store->eventsMatching({.start = at(dayStart), .end = at(dayEnd), .calendars = std::nullopt});
    ASSERT_EQ(events.size(), 4U);
    for (auto const& event : events) {
        EXPECT_TRUE(event.startDate.has_value());
        EXPECT_TRUE(event.endDate.has_value());
        ASSERT_NE(event.calendar, nullptr);
        EXPECT_EQ(store->calendarWithIdentifier(event.calendar->calendarIdentifier), *event.calendar);
        EXPECT_EQ(event.eventIdentifier,
                  event.calendar->calendarIdentifier + ":" + event.calendarItemIdentifier.value_or("absent"));
    }
}

TEST_P(EventStoreContract, anAllDayEventIsTheViewersDay) {
    auto const store = GetParam().make();
    for (auto const& event :
         store->eventsMatching({.start = at(dayStart), .end = at(dayEnd), .calendars = std::nullopt})) {
        EXPECT_EQ(event.isAllDay, event.title == "Holiday");
        if (!event.isAllDay) continue;
        EXPECT_EQ(event.startDate, at(dayStart));
        EXPECT_EQ(event.endDate, at(dayEnd));
    }
}

TEST_P(EventStoreContract, anEventIsFoundByItsIdentifier) {
    auto const store = GetParam().make();
    auto const meeting = store->eventWithIdentifier(identifierOf(*store, "alpha") + ":meeting");
    ASSERT_TRUE(meeting.has_value());
    EXPECT_EQ(meeting->title, "Meeting");
    EXPECT_EQ(meeting->startDate, at(1773219600));
    EXPECT_EQ(meeting->occurrenceKey, std::nullopt);
    EXPECT_TRUE(meeting->recurrenceRules.empty());
}

TEST_P(EventStoreContract, aSeriesIsFoundAsItsFirstOccurrence) {
    auto const store = GetParam().make();
    auto const series = store->eventWithIdentifier(identifierOf(*store, "beta") + ":series");
    ASSERT_TRUE(series.has_value());
    EXPECT_EQ(series->startDate, at(1773154800));
    EXPECT_EQ(series->occurrenceKey, "20260310T150000Z");
}

TEST_P(EventStoreContract, anUnknownIdentifierFindsNoEvent) {
    auto const store = GetParam().make();
    for (auto const& identifier :
         {std::string(), std::string("meeting"), std::string(":"), identifierOf(*store, "beta") + ":meeting",
          identifierOf(*store, "alpha") + ":", identifierOf(*store, "alpha")}) {
        EXPECT_FALSE(store->eventWithIdentifier(identifier).has_value()) << identifier;
    }
}

TEST_P(EventStoreContract, aNewEventIsBlank) {
    auto const event = GetParam().make()->makeEvent();
    EXPECT_EQ(event.eventIdentifier, std::nullopt);
    EXPECT_EQ(event.startDate, std::nullopt);
    EXPECT_EQ(event.calendar, nullptr);
    EXPECT_FALSE(event.isAllDay);
}

TEST_P(EventStoreContract, accessThatIsGrantedStaysGranted) {
    auto const store = GetParam().make();
    EXPECT_EQ(store->authorizationStatus(), EKAuthorizationStatus::notDetermined);
    EXPECT_TRUE(Foundation::runTask(store->requestFullAccessToEvents()));
    EXPECT_EQ(store->authorizationStatus(), EKAuthorizationStatus::fullAccess);
}

INSTANTIATE_TEST_SUITE_P(Stores, EventStoreContract,
                         testing::Values(ContractSubject{.name = "InMemory", .make = fakeOfTheWorld},
                                         ContractSubject{.name = "Folder", .make = foldersOfTheWorld}),
                         [](auto const& subject) { return subject.param.name; });
