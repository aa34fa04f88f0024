#include "DoctorReport.h"

#include "Tests/Platform/PrivateBus.h"
#include "Tests/UserNotifications/StubNotificationServer.h"
#include "Tests/WidgetHost/ChildProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace {

namespace JSON = Foundation::JSON;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// A home in use with one calendar, and what the doctor says of its announcements.
class DoctorAlarmJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(home.calendars() / "home" / "tea.ics",
                   calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z")));
        home.setUp();
    }

    [[nodiscard]] DoctorReport report() const { return DoctorReport::of(home); }

    // While a service runs, its own files may change at any moment.
    [[nodiscard]] DoctorReport reportBesideAService() const {
        return DoctorReport::from(home.quillora({"doctor", "--json"}));
    }

    void chooseTheCalendar() const {
        auto const list = JSON::parse(home.outputOf({"alarm", "calendars", "list", "--json"})).value();
        for (auto const& calendar : std::get<JSON::Array>(list.member("calendars")->storage)) {
            if (JSON::text(*calendar.member("eciTitle")) == "home") {
                auto const identifier = JSON::text(*calendar.member("eciId")).value();
                (void)home.outputOf({"alarm", "calendars", "add", identifier});
            }
        }
    }

    [[nodiscard]] ChildProcess startedService() const {
        return ChildProcess({QUILLORA_BUILD_DIR "/bin/quillora-alarms"}, home.environment);
    }

    // Whether the doctor came to say so within a minute.
    [[nodiscard]] bool awaitHealth(std::string const& check, std::string const& health) const {
        auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (std::chrono::steady_clock::now() < end) {
            if (reportBesideAService().worst(check).health == health) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    PrivateHome home;
};

TEST_F(DoctorAlarmJourneys, whoChoseNoCalendarMissesNoService) {
    auto const found = report();
    EXPECT_THAT(found.broken(), IsEmpty());
    EXPECT_EQ(found.worst("alarms").health, "note");
    EXPECT_EQ(found.worst("alarms").mend, "quillora alarm calendars add ID");
    EXPECT_EQ(found.worst("notifications").health, "note");
    EXPECT_EQ(found.worst("notifications").text, "without a session bus an alarm is heard but not seen");
}

TEST_F(DoctorAlarmJourneys, damagedSettingsAreNamedAndNotTakenForNoChoice) {
    chooseTheCalendar();
    auto const path = home.configuration() / "defaults.json";
    home.write(path, home.contentOf(path).substr(1));
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("settings"));
    EXPECT_EQ(sick.worst("settings").text, "the settings in " + path.string() +
                                               " do not count, so that no meet is announced: the file is "
                                               "damaged");
    EXPECT_EQ(sick.worst("settings").mend, "mv " + path.string() + " " + path.string() + ".away");
    EXPECT_EQ(sick.worst("alarms").text, "");
    std::filesystem::rename(path, path.string() + ".away");
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorAlarmJourneys, aDamagedChoiceOfHiddenCalendarsIsNamed) {
    auto const path = home.container() / "hiddenCalendarIdentifiers.json";
    home.write(path, "{}");
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("hidden"));
    EXPECT_EQ(sick.worst("hidden").text, "the choice of hidden calendars in " + path.string() +
                                             " does not count, so that all of them are shown: the file is "
                                             "damaged");
    std::filesystem::rename(path, path.string() + ".away");
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorAlarmJourneys, aServiceThatDoesNotRunIsNamedUntilItDoes) {
    chooseTheCalendar();
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("alarms"));
    EXPECT_EQ(sick.worst("alarms").text,
              "no alarm service runs, so that no meet is announced; calendars chosen for it: 1");
    EXPECT_THAT(sick.worst("alarms").mend, StartsWith("systemctl --user enable --now quillora-alarms;"));

    auto service = startedService();
    EXPECT_TRUE(awaitHealth("alarms", "works"));
    EXPECT_THAT(reportBesideAService().worst("alarms").text, HasSubstr("the alarm service runs"));
    service.signal(SIGTERM);
    EXPECT_EQ(service.wait(), 0);
    EXPECT_THAT(report().broken(), ElementsAre("alarms"));
}

TEST_F(DoctorAlarmJourneys, aServiceStartsWhileTheDoctorLooks) {
    chooseTheCalendar();
    home.write(home.configuration() / ".quillora-alarms.lock", "");
    auto service = startedService();
    // Each look takes the lock for a moment; none may keep the service from it.
    for (int look = 0; look < 5; ++look)
        (void)home.quillora({"doctor"});
    EXPECT_TRUE(awaitHealth("alarms", "works"));
    service.signal(SIGTERM);
    EXPECT_EQ(service.wait(), 0);
    EXPECT_EQ(service.errorText(), "");
}

TEST_F(DoctorAlarmJourneys, aNotificationServerIsLookedFor) {
    chooseTheCalendar();
    PrivateBus const bus;
    home.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("alarms", "notifications"));
    EXPECT_EQ(sick.worst("notifications").text,
              "no notification server is there, so that an alarm is heard but not seen");
    EXPECT_THAT(sick.worst("notifications").mend, HasSubstr("apt-get install notification-daemon"));

    StubNotificationServer const server(bus.address(), {"body"});
    EXPECT_THAT(report().broken(), ElementsAre("alarms"));
    EXPECT_EQ(report().worst("notifications").text, "a notification server runs in this session");
}

TEST_F(DoctorAlarmJourneys, aNotificationServerThatTheBusStartsIsEnough) {
    auto const services = home.folder() / "services";
    home.write(services / "notifications.service",
               "[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=/bin/false\n");
    PrivateBus const bus(services.string());
    home.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    EXPECT_EQ(report().worst("notifications").health, "works");
    EXPECT_THAT(report().worst("notifications").text, HasSubstr("starts when there is something to show"));
}

} // namespace
