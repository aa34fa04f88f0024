#include "Platform/Terminal/FullScreenTerminal.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace Platform {

namespace {

// The other screen, without a cursor and without wrapping of long lines; and the way back.
constexpr std::string_view enter = "\x1b[?1049h\x1b[?25l\x1b[?7l";
constexpr std::string_view leave = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";

// Signals that end a process at once, each with what was done about it before.
constexpr std::array deadly = {SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};

// What a handler of signals can reach: plain data, set before the handlers are.
struct Former {
    int input = -1;
    int output = -1;
    termios modes{};
    std::array<struct sigaction, deadly.size()> actions{};
};
Former former; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): a handler has no other way.

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t const written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

// Only what may be called in a handler.
void giveBack() {
    writeAll(former.output, leave);
    ::tcsetattr(former.input, TCSADRAIN, &former.modes);
}

void giveBackAndDie(int signal) {
    giveBack();
    for (std::size_t index = 0; index < deadly.size(); ++index)
        if (deadly[index] == signal) ::sigaction(signal, &former.actions[index], nullptr);
    ::raise(signal);
}

void catchDeadlySignals() {
    struct sigaction action{};
    action.sa_handler = giveBackAndDie;
    for (std::size_t index = 0; index < deadly.size(); ++index)
        ::sigaction(deadly[index], &action, &former.actions[index]);
}

void releaseDeadlySignals() {
    for (std::size_t index = 0; index < deadly.size(); ++index)
        ::sigaction(deadly[index], &former.actions[index], nullptr);
}

// Keys one by one and unseen. Ctrl-C still interrupts; Ctrl-Z comes as a key, since the screen has to be
// given back first.
termios keyModes(termios modes) {
    modes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    modes.c_cc[VMIN] = 0;
    modes.c_cc[VTIME] = 0;
    modes.c_cc[VSUSP] = _POSIX_VDISABLE;
    return modes;
}

// The length of the escape sequence that `bytes` begins with; 0 while its end is missing.
std::size_t sequenceLength(std::string_view bytes) {
    if (bytes.size() < 2) return 0;
    if (bytes[1] == 'O') return bytes.size() < 3 ? 0 : 3;
    if (bytes[1] != '[') return 2;
    for (std::size_t index = 2; index < bytes.size(); ++index)
        if (bytes[index] >= '@' && bytes[index] <= '~') return index + 1;
    return 0;
}

std::optional<TerminalKey> keyOf(std::string_view sequence) {
    using Kind = TerminalKey::Kind;
    if (sequence == "\x1b[1~" || sequence == "\x1b[7~") return TerminalKey{.kind = Kind::home};
    if (sequence == "\x1b[4~" || sequence == "\x1b[8~") return TerminalKey{.kind = Kind::end};
    if (sequence.size() != 3) return std::nullopt;
    switch (sequence.back()) {
    case 'A': return TerminalKey{.kind = Kind::up};
    case 'B': return TerminalKey{.kind = Kind::down};
    case 'C': return TerminalKey{.kind = Kind::right};
    case 'D': return TerminalKey{.kind = Kind::left};
    case 'H': return TerminalKey{.kind = Kind::home};
    case 'F': return TerminalKey{.kind = Kind::end};
    default: return std::nullopt;
    }
}

} // namespace

std::vector<TerminalKey> takeKeys(std::string& bytes) {
    constexpr std::size_t longestSequence = 32;
    std::vector<TerminalKey> keys;
    std::string_view rest = bytes;
    while (!rest.empty()) {
        if (rest.front() != '\x1b') {
            keys.push_back({.kind = TerminalKey::Kind::character, .character = rest.front()});
            rest.remove_prefix(1);
            continue;
        }
        auto const length = sequenceLength(rest);
        if (length == 0 && rest.size() < longestSequence) break;
        if (length == 0) {
            rest.remove_prefix(1); // No terminal sends so much that means one key.
            continue;
        }
        if (auto const key = keyOf(rest.substr(0, length))) keys.push_back(*key);
        rest.remove_prefix(length);
    }
    bytes.erase(0, bytes.size() - rest.size());
    return keys;
}

struct FullScreenTerminal::State {
    int input;
    int output;
    std::string bytes;

    void takeOver() const {
        auto const wanted = keyModes(former.modes);
        ::tcsetattr(input, TCSADRAIN, &wanted);
        writeAll(output, enter);
    }
};

FullScreenTerminal::FullScreenTerminal(int input, int output)
    : state(std::make_unique<State>(State{.input = input, .output = output, .bytes = {}})) {
    termios modes{};
    if (::tcgetattr(input, &modes) != 0 || ::isatty(output) != 1)
        throw std::system_error(errno, std::generic_category(), "no terminal");
    former.input = input;
    former.output = output;
    former.modes = modes;
    catchDeadlySignals();
    state->takeOver();
}

FullScreenTerminal::~FullScreenTerminal() {
    releaseDeadlySignals();
    giveBack();
}

void FullScreenTerminal::suspend() {
    giveBack();
    // All of the terminal's foreground, as Ctrl-Z would have it. The process stands still within this call.
    ::kill(0, SIGTSTP);
    state->takeOver();
}

FullScreenTerminal::Size FullScreenTerminal::size() const {
    winsize size{};
    bool const isKnown = ::ioctl(state->output, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
    if (!isKnown) return {.columns = 80, .rows = 24};
    return {.columns = size.ws_col, .rows = size.ws_row};
}

void FullScreenTerminal::show(std::string_view page) const {
    // Every line is written over the former one and cleared to its end, so that nothing flickers.
    std::string output = "\x1b[H";
    auto const rows = size().rows;
    for (std::size_t row = 0; row < rows && !page.empty(); ++row) {
        auto const end = page.find('\n');
        if (row > 0) output += "\r\n";
        output += page.substr(0, end);
        output += "\x1b[0m\x1b[K";
        page.remove_prefix(end == std::string_view::npos ? page.size() : end + 1);
    }
    writeAll(state->output, output + "\x1b[J");
}

std::optional<std::vector<TerminalKey>> FullScreenTerminal::readKeys() {
    std::array<char, 256> buffer{};
    ssize_t const count = ::read(state->input, buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return std::vector<TerminalKey>();
    // With nothing to read it answers 0 just as when the terminal has gone; it is asked only when it told of
    // something.
    if (count <= 0) return std::nullopt;
    state->bytes.append(buffer.data(), static_cast<std::size_t>(count));
    return takeKeys(state->bytes);
}

} // namespace Platform
