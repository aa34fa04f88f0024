#include "Applications/Companion/LiveDay.h"

#include "Applications/Companion/DayFollower.h"
#include "Applications/Companion/FaceText.h"
#include "Applications/Companion/LiveTexts.h"
#include "Applications/Companion/ShownDay.h"
#include "Applications/Companion/Support.h"
#include "Platform/Terminal/FullScreenTerminal.h"
#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/WidgetCenter.h"
#include "WidgetExtension/ScheduleDayStep.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <csignal>
#include <optional>
#include <string>
#include <unistd.h>

namespace Companion {

namespace DayOffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;
using Platform::TerminalKey;

namespace {

class LiveDay {
public:
    LiveDay(Invocation const& invocation, Composition::LiveServices& live, Platform::WidgetFamily family)
        : console(invocation.console),
          live(live),
          terminal(STDIN_FILENO, STDOUT_FILENO),
          follower(live, {.offset = std::nullopt,
                          .family = family,
                          .show = [this](auto const& view) { draw(view); },
                          .changesAtStarts = false}) {}

    void run() {
        auto const keys = Platform::GLibSource::watchingDescriptor(STDIN_FILENO, [this] { takeKeys(); });
        auto const resized = Platform::GLibSource::onSignal(SIGWINCH, [this] { follower.showAgain(); });
        terminal.show(Texts::liveKeys());
        follower.run();
    }

private:
    void draw(WidgetExtension::ScheduleWidgetView const& view) {
        auto const size = terminal.size();
        auto page = faceText(view.layout(), {.showsColors = console.showsColors(), .columns = size.columns});
        terminal.show(page + "\n" + Texts::liveKeys());
    }

    void takeKeys() {
        auto const keys = terminal.readKeys();
        if (!keys) {
            follower.quit(); // Nobody can press one any more.
            return;
        }
        for (auto const& key : *keys)
            act(key);
    }

    void act(TerminalKey const& key) {
        if (key.kind == TerminalKey::Kind::left || key.character == 'p' || key.character == 'h') step(-1);
        if (key.kind == TerminalKey::Kind::right || key.character == 'n' || key.character == 'l') step(1);
        if (key.kind == TerminalKey::Kind::home || key.character == 't') goToToday();
        if (key.character == 'q' || key.character == endOfTransmission) follower.quit();
    }

    void step(std::int64_t days) {
        std::int64_t unused = 0;
        // From such a day, which only another program can have written, there is no further step.
        if (__builtin_add_overflow(DayOffsetStore::load(*live.files()), days, &unused)) return;
        Foundation::runTask(WidgetExtension::stepScheduleDay(live.files(), live.widgetCenter(), days));
        follower.reload();
    }

    void goToToday() {
        DayOffsetStore::save(*live.files(), 0);
        live.widgetCenter()->reloadAllTimelines();
        follower.reload();
    }

    static constexpr char endOfTransmission = '\x04';

    Console const& console;
    Composition::LiveServices& live;
    Platform::FullScreenTerminal terminal;
    DayFollower follower;
};

} // namespace

ExitCode showLiveDay(Invocation const& invocation, Platform::WidgetFamily family) {
    if (::isatty(STDIN_FILENO) != 1 || ::isatty(STDOUT_FILENO) != 1)
        throw CommandError::wrongUse(Texts::liveNeedsTerminal());
    auto const live = liveServices(invocation);
    {
        // A question for the calendars is asked and answered before the screen is taken.
        Foundation::TaskLoop loop;
        (void)shownDay(live->scheduleWidgetServices(loop.executor()), loop, std::nullopt);
    }
    LiveDay(invocation, *live, family).run();
    return ExitCode::done;
}

} // namespace Companion
