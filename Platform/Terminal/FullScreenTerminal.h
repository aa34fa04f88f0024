#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// A key that was pressed: a character, or one of the few others that are told apart.
struct TerminalKey {
    enum class Kind : std::uint8_t { character, left, right, up, down, home, end };
    Kind kind;
    char character = '\0'; ///< One byte, of the kind `character` only.

    bool operator==(TerminalKey const&) const = default;
};

/// The keys in what a terminal sends; escape sequences that mean none of them are passed over. What is cut
/// off at the end stays in `bytes` for the next call.
std::vector<TerminalKey> takeKeys(std::string& bytes);

/// The whole screen of a terminal, with keys as they are pressed. It is given back as it was when this object
/// ends, and also when a signal ends the process that no program lives through. One at a time.
class FullScreenTerminal final {
public:
    struct Size {
        std::size_t columns;
        std::size_t rows;
    };

    /// Throws std::system_error when the descriptors are no terminal.
    FullScreenTerminal(int input, int output);
    FullScreenTerminal(FullScreenTerminal const&) = delete;
    FullScreenTerminal& operator=(FullScreenTerminal const&) = delete;
    ~FullScreenTerminal();

    /// Gives the terminal back and stops the process, as Ctrl-Z does elsewhere; that comes as the key '\x1a'
    /// here. Returns with the terminal taken again and empty, once the process is continued. For the main
    /// thread.
    void suspend();

    /// 80 × 24 where the terminal does not know.
    [[nodiscard]] Size size() const;

    /// Shows `page` from the upper left corner, as many lines as there is room for, and nothing else. It may
    /// style its text by escape sequences. What cannot be written is lost.
    void show(std::string_view page) const;

    /// The keys pressed since the last call; absent when the terminal has gone.
    std::optional<std::vector<TerminalKey>> readKeys();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Platform
