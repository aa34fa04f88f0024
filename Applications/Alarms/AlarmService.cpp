#include "Applications/Alarms/AlarmService.h"

#include "Applications/Alarms/Texts.h"

#include <algorithm>
#include <utility>

namespace Alarms {

using Foundation::Date;
using Meetings::MeetEntity;

namespace {

bool isPending(std::vector<Alarm> const& pending, std::string const& identifier) {
    return std::ranges::find(pending, identifier, &Alarm::identifier) != pending.end();
}

} // namespace

AlarmService::AlarmService(Platform::Clock const& clock, Platform::WallClockTimer& timer,
                           Platform::MainLoop& mainLoop, AlarmMemory memory, AlarmServiceRoads roads)
    : clock(clock),
      timer(timer),
      mainLoop(mainLoop),
      memory(std::move(memory)),
      roads(std::move(roads)),
      rung(this->memory.rung()),
      snoozed(this->memory.snoozed()),
      self(std::make_shared<AlarmService*>(this)) {}

AlarmService::~AlarmService() {
    timer.onWake(nullptr);
    timer.schedule(std::nullopt);
}

void AlarmService::start() {
    timer.onWake([this](Platform::WallClockTimer::Wake wake) { woken(wake); });
    replan();
}

void AlarmService::replan() {
    isReplanWanted = isAsking;
    if (isAsking) return;
    isAsking = true;
    // It is being done; a deadline that passes meanwhile must not wake again and again.
    replanAt = std::nullopt;
    roads.askMeets([loop = &mainLoop, weak = std::weak_ptr(self)](auto meets) {
        loop->invoke([weak, meets = std::move(meets)] {
            // Looked at on the loop's thread, where the service also ends: it cannot go in between.
            if (auto const service = weak.lock()) (*service)->answered(meets);
        });
    });
}

void AlarmService::answered(std::expected<std::vector<MeetEntity>, std::string> const& meets) {
    isAsking = false;
    auto const now = clock.now();
    if (meets) {
        plan(alarmsOf(*meets, roads.announcedCalendars()));
        replanAt = now.addingTimeInterval(replanInterval);
    } else {
        // What is armed stays armed: the calendars are away for a moment, not the meets.
        roads.report(meets.error());
        replanAt = now.addingTimeInterval(retryInterval);
    }
    ringDue();
    if (std::exchange(isReplanWanted, false)) replan();
}

void AlarmService::plan(std::vector<Alarm> const& candidates) {
    auto const now = clock.now();
    auto const armed = memory.armed();
    pending.clear();
    std::set<std::string> stillRung;
    std::map<std::string, Date> stillSnoozed;
    for (auto alarm : candidates) {
        if (rung.contains(alarm.identifier)) stillRung.insert(alarm.identifier);
        if (auto const snooze = snoozed.find(alarm.identifier); snooze != snoozed.end()) {
            stillSnoozed.insert(*snooze);
            alarm.at = snooze->second;
            pending.push_back(std::move(alarm));
            continue;
        }
        if (rung.contains(alarm.identifier)) continue;
        bool const isAhead = alarm.at > now && alarm.at.timeIntervalSince(now) <= horizon;
        // One that began before it was ever armed is not announced after the fact.
        bool const isLate = alarm.at <= now && armed.contains(alarm.identifier);
        if (isAhead || isLate) pending.push_back(std::move(alarm));
    }
    std::erase_if(heard, [now](auto const& one) { return now.timeIntervalSince(one.second.at) > horizon; });
    rung = std::move(stillRung);
    snoozed = std::move(stillSnoozed);
    std::ranges::sort(pending, ringsBefore);
    remember();
}

void AlarmService::woken(Platform::WallClockTimer::Wake wake) {
    bool const isReplanDue = replanAt && clock.now() >= *replanAt;
    // A clock that was set has moved every day, and a sleep may have brought other calendars.
    if (wake == Platform::WallClockTimer::Wake::clockSet || isReplanDue) replan();
    ringDue();
}

void AlarmService::ringDue() {
    auto const now = clock.now();
    auto const firstAhead =
        std::ranges::find_if(pending, [now](Alarm const& alarm) { return alarm.at > now; });
    std::vector<Alarm> const due(pending.begin(), firstAhead);
    pending.erase(pending.begin(), firstAhead);
    std::vector<Alarm> audible;
    for (auto const& alarm : due) {
        snoozed.erase(alarm.identifier);
        // A dropped one is not marked: the clock may have been wrong, and be set back.
        if (now.timeIntervalSince(alarm.at) > grace) continue;
        rung.insert(alarm.identifier);
        audible.push_back(alarm);
    }
    if (!due.empty()) remember();
    for (auto const& alarm : audible) {
        heard.insert_or_assign(alarm.identifier, alarm);
        roads.ring(alarm);
    }
    schedule();
}

void AlarmService::snooze(std::string const& identifier) {
    auto const found = heard.find(identifier);
    if (found == heard.end() || isPending(pending, identifier)) return;
    auto alarm = found->second;
    alarm.at = clock.now().addingTimeInterval(snoozeInterval);
    snoozed.insert_or_assign(identifier, alarm.at);
    pending.push_back(std::move(alarm));
    std::ranges::sort(pending, ringsBefore);
    remember();
    schedule();
}

std::optional<Alarm> AlarmService::rungAlarm(std::string const& identifier) const {
    auto const found = heard.find(identifier);
    if (found == heard.end()) return std::nullopt;
    return found->second;
}

void AlarmService::schedule() {
    auto deadline = replanAt;
    if (!pending.empty() && (!deadline || pending.front().at < *deadline)) deadline = pending.front().at;
    timer.schedule(deadline);
}

void AlarmService::remember() {
    std::set<std::string> armed;
    for (auto const& alarm : pending)
        armed.insert(alarm.identifier);
    // What has rung first: between the two writes an alarm is rather marked twice than not at all.
    for (auto const failure : {memory.setRung(rung), memory.setSnoozed(snoozed), memory.setArmed(armed)}) {
        if (failure) roads.report(Texts::notRemembered(failure.message()));
    }
}

} // namespace Alarms
