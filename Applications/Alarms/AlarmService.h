#pragma once

#include "Applications/Alarms/Alarm.h"
#include "Applications/Alarms/AlarmMemory.h"
#include "Platform/Clock/Clock.h"
#include "Platform/WidgetHost/MainLoop.h"
#include "Platform/WidgetHost/WallClockTimer.h"

#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Alarms {

/// The meets of the days around now, or why they could not be read. May answer on any thread.
using MeetsAnswer = std::function<void(std::expected<std::vector<Meetings::MeetEntity>, std::string>)>;

/// What the service asks of the world.
struct AlarmServiceRoads {
    /// Asks for the meets from a day ago to a day ahead, at least.
    std::function<void(MeetsAnswer)> askMeets;
    std::function<std::set<std::string>()> announcedCalendars;
    std::function<void(Alarm const&)> ring;
    std::function<void(std::string const&)> report; ///< What went wrong, for the log.
};

/// Rings each alarm once, at its time. It lives on the main loop's thread; only answers may come from
/// elsewhere.
///
/// It plans the next 24 hours, and plans anew when something changed, when the clock was set or the machine
/// slept, and after twelve hours. In between it sleeps on one timer. What is armed is remembered: an alarm
/// whose time came while the program or the machine slept still rings if it is at most five minutes late, and
/// is dropped after that, so that a resume or a restart never brings a flock of old ones.
class AlarmService final {
public:
    static constexpr double horizon = 24 * 60 * 60;        ///< Seconds.
    static constexpr double replanInterval = 12 * 60 * 60; ///< Seconds.
    static constexpr double retryInterval = 15 * 60;       ///< Seconds, after meets that could not be read.
    static constexpr double grace = 5 * 60;                ///< Seconds.
    static constexpr double snoozeInterval = 5 * 60;       ///< Seconds.

    AlarmService(Platform::Clock const& clock, Platform::WallClockTimer& timer, Platform::MainLoop& mainLoop,
                 AlarmMemory memory, AlarmServiceRoads roads);
    AlarmService(AlarmService const&) = delete;
    AlarmService& operator=(AlarmService const&) = delete;
    ~AlarmService();

    /// Called once.
    void start();

    /// Plans anew, or once more after the plan that is being made.
    void replan();

    /// Rings an alarm that has rung once more, five minutes from now. Others are left as they are.
    void snooze(std::string const& identifier);

    /// The alarm that has rung under that identifier since the start, for its meet.
    [[nodiscard]] std::optional<Alarm> rungAlarm(std::string const& identifier) const;

private:
    void answered(std::expected<std::vector<Meetings::MeetEntity>, std::string> const& meets);
    void plan(std::vector<Alarm> const& candidates);
    void woken(Platform::WallClockTimer::Wake wake);
    void ringDue();
    void schedule();
    void remember();

    Platform::Clock const& clock;
    Platform::WallClockTimer& timer;
    Platform::MainLoop& mainLoop;
    AlarmMemory memory;
    AlarmServiceRoads roads;

    std::vector<Alarm> pending; ///< Earliest first.
    std::set<std::string> rung;
    std::map<std::string, Foundation::Date> snoozed;
    std::map<std::string, Alarm> heard; ///< Since the start, for the person's answers.
    std::optional<Foundation::Date> replanAt;
    bool isAsking = false;
    bool isReplanWanted = false;
    std::shared_ptr<AlarmService*> self;
};

} // namespace Alarms
