#pragma once

#include "Foundation/Environment.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Companion {

/// The program's three standard streams. Writes go straight to the descriptors, so that nothing is lost in
/// a buffer when the program ends and no stream's locale takes part.
class Console {
public:
    explicit Console(Foundation::Environment const& environment);

    /// Writes to standard output. Throws CommandError with ExitCode::failed when the reader has gone away
    /// or the disk is full.
    void write(std::string_view bytes) const;

    /// Writes `text` and a line feed to standard output.
    void writeLine(std::string_view text) const;

    /// Writes to standard output what a command says that has made its change: whole lines. Where they cannot
    /// be written, `whatWasDone` is told in the error, so that nobody takes the change for not made and makes
    /// it again. Throws as `write` does.
    void confirm(std::string_view lines, std::string_view whatWasDone) const;

    /// The same with `whatWasDone` as the one line.
    void confirmLine(std::string_view whatWasDone) const;

    /// Writes one line to standard error: the program's name, then `message` with everything that could
    /// break the line made harmless. Never fails.
    void report(std::string_view message) const;

    /// Writes one line to standard error that is `text` alone: what another part of Quillora says, exactly.
    /// What could break the line is made harmless. Never fails.
    void reportExactly(std::string_view text) const;

    /// Writes `text` to standard error as it is: what a person should know before an error or a question.
    /// It must be harmless already. Never fails.
    void tell(std::string_view text) const;

    /// Whether somebody sits at a terminal who can be asked.
    [[nodiscard]] bool canAsk() const;

    /// Asks a yes-or-no question on the terminal. Absent when nobody sits there or the input ends. Ctrl-C
    /// there ends the program.
    [[nodiscard]] std::optional<bool> ask(std::string_view question) const;

    /// Whether standard output may carry ANSI colours: a terminal that is not "dumb", and no NO_COLOR.
    [[nodiscard]] bool showsColors() const { return colors; }

    /// Columns of the terminal on standard output; absent when it is none.
    [[nodiscard]] std::optional<std::size_t> columns() const;

private:
    bool colors;
};

} // namespace Companion
