#include "Applications/Widget/DayPresses.h"

#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"
#include "WidgetExtension/ShowNextScheduleDayIntent.h"
#include "WidgetExtension/ShowPreviousScheduleDayIntent.h"

#include <utility>

namespace Widget {

namespace {

namespace DayOffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;

using Files = std::shared_ptr<Platform::FileManager const>;
using Center = std::shared_ptr<Platform::WidgetCenter>;
using Done = std::function<void(PressOutcome const&)>;

template <typename Intent>
Foundation::Task<void> step(Files files, Center widgetCenter, std::int64_t days, Done done) {
    auto const storedDay = DayOffsetStore::load(*files);
    std::int64_t next = 0;
    // The intent ends the process over such a file. A widget had better stay, and say what is wrong.
    if (__builtin_add_overflow(storedDay, days, &next)) {
        done({.refusedDay = storedDay, .notSaved = std::nullopt});
        co_return;
    }
    auto const witness = std::make_shared<Platform::WriteWitness const>(std::move(files));
    Intent intent(witness, std::move(widgetCenter));
    co_await intent.perform();
    done({.refusedDay = std::nullopt, .notSaved = witness->lastFailure()});
}

Foundation::Task<void> returnToToday(Files files, Center widgetCenter, Done done) {
    Platform::WriteWitness const witness(std::move(files));
    DayOffsetStore::save(witness, 0);
    widgetCenter->reloadAllTimelines();
    done({.refusedDay = std::nullopt, .notSaved = witness.lastFailure()});
    co_return;
}

} // namespace

DayPresses::DayPresses(Foundation::TaskExecutor executor, std::shared_ptr<Platform::FileManager const> files,
                       std::shared_ptr<Platform::WidgetCenter> widgetCenter,
                       std::function<void(PressOutcome const&)> done)
    : executor(std::move(executor)),
      files(std::move(files)),
      widgetCenter(std::move(widgetCenter)),
      done(std::move(done)) {}

void DayPresses::previousDay() const {
    executor.start(step<WidgetExtension::ShowPreviousScheduleDayIntent>(files, widgetCenter, -1, done));
}

void DayPresses::nextDay() const {
    executor.start(step<WidgetExtension::ShowNextScheduleDayIntent>(files, widgetCenter, 1, done));
}

void DayPresses::today() const {
    executor.start(returnToToday(files, widgetCenter, done));
}

} // namespace Widget
