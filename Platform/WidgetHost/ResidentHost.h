#pragma once

#include "Platform/Clock/Clock.h"
#include "Platform/WidgetHost/MainLoop.h"
#include "Platform/WidgetHost/TimelineProvider.h"
#include "Platform/WidgetHost/WallClockTimer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace Platform {

/// Whether an entry bears data or only holds the place.
enum class EntryKind : std::uint8_t { placeholder, loaded };

/// The place that shows what a resident host has.
template <typename Entry>
struct ResidentHostView {
    /// Shows `entry` from now on.
    std::function<void(Entry const& entry, EntryKind kind)> show;

    /// The next instant after `now` at which the entry would have to look different although nobody asks: the
    /// end of a meet that is shown, midnight. Absent when there is none.
    std::function<std::optional<Foundation::Date>(Entry const& entry, Foundation::Date now)> nextChange;
};

/// Drives one timeline provider: shows its placeholder, asks it for a timeline, and asks again when the
/// timeline's policy says, when the shown entry goes out of date, when the clock is set, and on request.
///
/// At most one request runs at a time; whatever asks meanwhile is answered by exactly one more. Between
/// requests nothing runs: the host sleeps on one timer. It lives on the main loop's thread; only the
/// provider's completion may come from elsewhere, and one that comes after the host's end is dropped.
template <typename Entry>
class ResidentHost final {
public:
    /// A policy that lies nearer, or in the past, counts as this many seconds from now, so that a provider
    /// without a usable calendar cannot keep the host busy.
    static constexpr double shortestReloadInterval = 60;

    ResidentHost(TimelineProvider<Entry>& provider, Clock const& clock, WallClockTimer& timer,
                 MainLoop& mainLoop, TimelineProviderContext context, ResidentHostView<Entry> view)
        : provider(provider),
          clock(clock),
          timer(timer),
          mainLoop(mainLoop),
          context(context),
          view(std::move(view)),
          self(std::make_shared<ResidentHost*>(this)) {}

    ResidentHost(ResidentHost const&) = delete;
    ResidentHost& operator=(ResidentHost const&) = delete;

    ~ResidentHost() {
        timer.onWake(nullptr);
        timer.schedule(std::nullopt);
    }

    /// Shows the placeholder and asks for the first timeline. Called once.
    void start() {
        timer.onWake([this](WallClockTimer::Wake wake) { woken(wake); });
        entry = provider.placeholder(context);
        view.show(*entry, EntryKind::placeholder);
        request();
    }

    /// Asks for a new timeline at once, or after the request that is running.
    void reload() {
        if (isRequesting) {
            isReloadWanted = true;
            return;
        }
        request();
    }

    /// Shows the current entry once more, for a place whose own looks have changed.
    void showAgain() { view.show(*entry, kind); }

    /// Shows in another family from now on: the current entry at once, and a new one as soon as it is there.
    void setFamily(WidgetFamily family) {
        context.family = family;
        showAgain();
        reload();
    }

    [[nodiscard]] WidgetFamily family() const { return context.family; }

private:
    void request() {
        isRequesting = true;
        isReloadWanted = false;
        // What was due is being asked for; a deadline that passes meanwhile must not ask a second time.
        deadline = std::nullopt;
        timer.schedule(deadline);
        provider.getTimeline(context,
                             [loop = &mainLoop, weak = std::weak_ptr(self)](Timeline<Entry> timeline) {
                                 loop->invoke([weak, timeline = std::move(timeline)]() mutable {
                                     // Looked at on the loop's thread, where the host also ends: it cannot go
                                     // in between.
                                     if (auto const host = weak.lock()) {
                                         (*host)->answered(std::move(timeline));
                                     }
                                 });
                             });
    }

    void answered(Timeline<Entry> timeline) {
        isRequesting = false;
        policy = timeline.policy;
        answeredAt = clock.now();
        if (!timeline.entries.empty()) {
            entry = std::move(timeline.entries.front());
            kind = EntryKind::loaded;
            // Shown even when a newer one is wanted: requests that never stop must not starve the face.
            view.show(*entry, kind);
        }
        if (isReloadWanted) {
            request();
            return;
        }
        scheduleNextRequest();
    }

    void woken(WallClockTimer::Wake wake) {
        // A clock that was set has moved every day and every deadline, so nothing that is scheduled counts.
        bool const isDue = deadline && clock.now() >= *deadline;
        if (wake == WallClockTimer::Wake::clockSet || isDue) {
            reload();
            return;
        }
        timer.schedule(deadline);
    }

    void scheduleNextRequest() {
        deadline = std::nullopt;
        if (policy.afterDate) {
            auto const earliest = answeredAt.addingTimeInterval(shortestReloadInterval);
            // Written so that a policy that is not a number becomes the earliest instant, too.
            deadline = *policy.afterDate > earliest ? *policy.afterDate : earliest;
        }
        auto const change = view.nextChange(*entry, answeredAt);
        if (change && *change > answeredAt && (!deadline || *change < *deadline)) {
            deadline = change;
        }
        timer.schedule(deadline);
    }

    TimelineProvider<Entry>& provider;
    Clock const& clock;
    WallClockTimer& timer;
    MainLoop& mainLoop;
    TimelineProviderContext context;
    ResidentHostView<Entry> view;

    std::optional<Entry> entry; // Absent only before start().
    EntryKind kind = EntryKind::placeholder;
    TimelineReloadPolicy policy;
    Foundation::Date answeredAt{.secondsSince1970 = 0};
    std::optional<Foundation::Date> deadline;
    bool isRequesting = false;
    bool isReloadWanted = false;
    std::shared_ptr<ResidentHost*> self;
};

} // namespace Platform
