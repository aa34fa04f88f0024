#include "Applications/Companion/TokenInput.h"

#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/CommandError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace Companion {
namespace {

constexpr std::size_t longestToken = std::size_t{64} << 10;

// Text without its line break, if it can be a token.
std::string checkedToken(std::string text) {
    if (text.ends_with('\r')) text.pop_back();
    if (text.empty()) throw CommandError::wrongUse(Texts::noToken());
    bool const hasControl = std::ranges::any_of(
        text, [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; });
    if (hasControl) throw CommandError::wrongUse(Texts::badToken());
    return text;
}

std::sig_atomic_t volatile signalThatCame = 0;

void noteSignal(int signal) {
    signalThatCame = signal;
}

// While this lives, the signals that would end the process arrive only in a wait that asks for them: the
// terminal must be set right again first.
class HeldSignals {
public:
    HeldSignals() {
        signalThatCame = 0;
        sigset_t held;
        sigemptyset(&held);
        for (std::size_t index = 0; index < signals.size(); ++index) {
            sigaddset(&held, signals[index]);
            struct sigaction noting = {};
            noting.sa_handler = noteSignal;
            ::sigaction(signals[index], &noting, &before[index]);
        }
        ::pthread_sigmask(SIG_BLOCK, &held, &mask);
    }
    ~HeldSignals() {
        for (std::size_t index = 0; index < signals.size(); ++index)
            ::sigaction(signals[index], &before[index], nullptr);
        ::pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    }
    HeldSignals(HeldSignals const&) = delete;
    HeldSignals& operator=(HeldSignals const&) = delete;

    /// Waits until there is something to read. False when a signal came instead.
    [[nodiscard]] bool waitForInput(int descriptor) const {
        pollfd input{.fd = descriptor, .events = POLLIN, .revents = 0};
        while (::ppoll(&input, 1, nullptr, &mask) < 0 && errno == EINTR)
            if (signalThatCame != 0) return false;
        return true;
    }

private:
    static constexpr std::array signals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    std::array<struct sigaction, signals.size()> before = {};
    sigset_t mask = {};
};

// The terminal shows nothing but line breaks while this lives.
class HiddenTyping {
public:
    explicit HiddenTyping(int terminal) : terminal(terminal) {
        ::tcgetattr(terminal, &before);
        auto hidden = before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hidden.c_lflag |= ECHONL | ICANON;
        ::tcsetattr(terminal, TCSADRAIN, &hidden);
    }
    ~HiddenTyping() { ::tcsetattr(terminal, TCSADRAIN, &before); }
    HiddenTyping(HiddenTyping const&) = delete;
    HiddenTyping& operator=(HiddenTyping const&) = delete;

private:
    int terminal;
    termios before = {};
};

// Reads up to a line break or the end, byte by byte: what follows is not ours to take.
template <typename Ready>
std::string readLine(int descriptor, Ready isReady) {
    std::string line;
    while (line.size() <= longestToken) {
        if (!isReady()) throw CommandError(ExitCode::interrupted, Texts::interruptedBeforeAChange());
        char byte = 0;
        auto const count = ::read(descriptor, &byte, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw CommandError::wrongUse(Texts::unreadableToken(descriptor, std::strerror(errno)));
        if (count == 0 || byte == '\n') return line;
        line.push_back(byte);
    }
    throw CommandError::wrongUse(Texts::badToken());
}

// The question comes last: whoever answers it at once is not shown either.
std::string typedLine(int terminal, std::string const& prompt) {
    HeldSignals const held;
    HiddenTyping const hidden(terminal);
    [[maybe_unused]] auto const shown = ::write(STDERR_FILENO, prompt.data(), prompt.size());
    return readLine(terminal, [&] { return held.waitForInput(terminal); });
}

} // namespace

std::string tokenFromDescriptor(std::string_view number) {
    int descriptor = 0;
    auto const [end, error] = std::from_chars(number.data(), number.data() + number.size(), descriptor);
    bool const isNumber = error == std::errc() && end == number.data() + number.size() && descriptor >= 0;
    // What was typed is not repeated: it may be the token itself.
    if (!isNumber) throw CommandError::wrongUse(Texts::notADescriptor());
    // Whoever names a terminal types there, and a token is not shown anywhere.
    if (::isatty(descriptor) == 1) return checkedToken(typedLine(descriptor, Texts::askForAnyToken() + " "));
    return checkedToken(readLine(descriptor, [] { return true; }));
}

std::string tokenFromTerminal(std::string_view question) {
    if (::isatty(STDIN_FILENO) != 1 || ::isatty(STDERR_FILENO) != 1)
        throw CommandError::wrongUse(Texts::nowhereToTypeTheToken());
    return checkedToken(typedLine(STDIN_FILENO, std::string(question) + " "));
}

} // namespace Companion
