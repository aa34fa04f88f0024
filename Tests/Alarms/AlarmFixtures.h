#pragma once

#include "Applications/Alarms/AlarmService.h"
#include "Foundation/DateFormatting.h"
#include "Meetings/StableIdentifier.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Defaults/InMemoryUserDefaults.h"
#include "Platform/WidgetHost/ManualWallClockTimer.h"
#include "Platform/WidgetHost/QueuedMainLoop.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Alarms {

inline Foundation::Date moment(std::string const& text) {
    return Foundation::dateFromISO8601(text).value();
}

/// A meet of half an hour in the calendar "work", its identity made of name and start, as a store's is.
inline Meetings::MeetEntity meetAt(std::string const& name, std::string const& start) {
    auto meet = Meetings::someMeet(name);
    meet.metId = Meetings::StableIdentifier::uuid(name + "|" + start);
    meet.metDate = moment(start);
    meet.metDuration = 1800;
    meet.metCalendarIdentifier = "work";
    return meet;
}

/// A service in a world of the test's own: its clock, its calendars, and what it rings.
class AlarmWorld {
public:
    explicit AlarmWorld(std::string const& now) : clock(moment(now)) {}

    /// Starts the service, as after a log-in or a crash: what was remembered is there, nothing else.
    void start() {
        service.reset();
        service = std::make_unique<AlarmService>(
            clock, timer, loop, AlarmMemory(defaults),
            AlarmServiceRoads{.askMeets =
                                  [this](MeetsAnswer answer) {
                                      ++questions;
                                      if (isSlow) {
                                          waiting.push_back(std::move(answer));
                                      } else {
                                          answer(meets);
                                      }
                                  },
                              .announcedCalendars = [this] { return announced; },
                              .ring = [this](Alarm const& alarm) { ring(alarm); },
                              .report = [this](std::string const& text) { reports.push_back(text); }});
        service->start();
        loop.runPending();
    }

    /// The clock runs on to this moment, and the timer wakes at each deadline on the way, as a kernel's does.
    void runUntil(std::string const& text) {
        auto const end = moment(text);
        while (timer.scheduled() && *timer.scheduled() <= end) {
            auto const due = *timer.scheduled();
            if (due > clock.now()) clock.set(due);
            timer.wake(Platform::WallClockTimer::Wake::deadline);
            loop.runPending();
        }
        clock.set(end);
    }

    /// The clock jumps: the machine slept until then, or somebody set it.
    void jumpTo(std::string const& text) {
        clock.set(moment(text));
        timer.wake(Platform::WallClockTimer::Wake::clockSet);
        loop.runPending();
    }

    /// The calendars or the settings changed.
    void change() {
        service->replan();
        loop.runPending();
    }

    /// What has rung since the last look: names, each with the moment.
    std::vector<std::string> takeRings() { return std::exchange(rings, {}); }

    Platform::FixedClock clock;
    Platform::ManualWallClockTimer timer;
    Platform::QueuedMainLoop loop;
    std::shared_ptr<Platform::InMemoryUserDefaults> defaults =
        std::make_shared<Platform::InMemoryUserDefaults>();
    std::expected<std::vector<Meetings::MeetEntity>, std::string> meets;
    std::set<std::string> announced{"work"};
    bool isSlow = false;
    std::vector<MeetsAnswer> waiting;
    int questions = 0;
    std::vector<std::string> reports;
    std::unique_ptr<AlarmService> service;

private:
    void ring(Alarm const& alarm) {
        rings.push_back(alarm.meet.metName + " " + Foundation::iso8601(clock.now()));
    }

    std::vector<std::string> rings;
};

} // namespace Alarms
