#include "Applications/Companion/LiveDay.h"

#include "Applications/Companion/DayFollower.h"
#include "Applications/Companion/FaceText.h"
#include "Applications/Companion/LiveTexts.h"
#include "Applications/Companion/ShownDay.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/Files/WriteWitness.h"
#include "Platform/Terminal/FullScreenTerminal.h"
#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/WidgetCenter.h"
#include "WidgetExtension/ScheduleDayStep.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <algorithm>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace Companion {

namespace DayOffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;
using Platform::TerminalKey;

namespace {

// As many lines of a face as leave room for what stands below: a line of trouble, empty for none, and the
// keys.
std::string pageOf(std::string_view face, std::string const& trouble,
                   Platform::FullScreenTerminal::Size const& size) {
    std::string page;
    for (std::size_t row = 2; row < size.rows && !face.empty(); ++row) {
        auto const end = std::min(face.find('\n'), face.size() - 1) + 1;
        page += face.substr(0, end);
        face.remove_prefix(end);
    }
    if (size.rows > 1) page += cutToColumns(trouble, size.columns) + "\n";
    return page + cutToColumns(Texts::liveKeys(), size.columns);
}

bool canMoveItsCursor(Foundation::Environment const& environment) {
    auto const terminal = environment.value("TERM").value_or("");
    return !terminal.empty() && terminal != "dumb";
}

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
        auto const page =
            faceText(view.layout(), {.showsColors = console.showsColors(), .columns = size.columns});
        terminal.show(pageOf(page, trouble, size));
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
        if (key.character == suspension) {
            terminal.suspend();
            follower.showAgain();
        }
        if (key.character == 'q' || key.character == endOfTransmission) follower.quit();
    }

    void step(std::int64_t days) {
        auto const files = std::make_shared<Platform::WriteWitness const>(live.files());
        auto const before = DayOffsetStore::load(*files);
        std::int64_t unused = 0;
        // From such a day, which only another program can have written, there is no further step.
        if (__builtin_add_overflow(before, days, &unused)) {
            tell(Texts::storedDayIsOutOfRange(before));
            return;
        }
        Foundation::runTask(WidgetExtension::stepScheduleDay(files, live.widgetCenter(), days));
        showMoved(*files);
    }

    void goToToday() {
        Platform::WriteWitness const files(live.files());
        DayOffsetStore::save(files, 0);
        live.widgetCenter()->reloadAllTimelines();
        showMoved(files);
    }

    void showMoved(Platform::WriteWitness const& files) {
        tell(files.lastFailure() ? Texts::dayNotSaved(whyNotKept(files)) : std::string());
        follower.reload();
    }

    void tell(std::string text) {
        if (text == trouble) return;
        trouble = std::move(text);
        follower.showAgain();
    }

    // What Ctrl-D and Ctrl-Z send.
    static constexpr char endOfTransmission = '\x04';
    static constexpr char suspension = '\x1a';

    Console const& console;
    Composition::LiveServices& live;
    Platform::FullScreenTerminal terminal;
    std::string trouble; // Why the last key did not do what it says.
    DayFollower follower;
};

} // namespace

ExitCode showLiveDay(Invocation const& invocation, Platform::WidgetFamily family) {
    if (::isatty(STDIN_FILENO) != 1 || ::isatty(STDOUT_FILENO) != 1)
        throw CommandError::wrongUse(Texts::liveNeedsTerminal());
    if (!canMoveItsCursor(invocation.environment))
        throw CommandError::wrongUse(Texts::liveNeedsAnotherTerminal());
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
