#pragma once

#include "Foundation/Environment.h"
#include "Platform/Logging/ConsoleOutput.h"

#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace Companion {

/// One line on standard error that tells a person what is waited for and how long, and goes again at the end.
/// Only on a terminal: a script's standard error holds what went wrong and nothing else.
class WaitingLine final {
public:
    WaitingLine(std::string what, Foundation::Environment const& environment);
    ~WaitingLine() { clear(); }

    WaitingLine(WaitingLine const&) = delete;
    WaitingLine& operator=(WaitingLine const&) = delete;

    /// Whether there is a terminal to show it on.
    [[nodiscard]] bool canBeShown() const { return isTerminal; }
    void show(std::chrono::seconds elapsed);
    void clear();

private:
    std::string what;
    bool isTerminal;
    bool isShown = false;
};

/// The line of a call that does not come back for a while: shown from the first second on while this lives.
/// Nothing else may be written to the terminal meanwhile.
class ShownWait final {
public:
    ShownWait(std::string what, Foundation::Environment const& environment);

private:
    WaitingLine line;
    std::jthread ticker; ///< Last, so that it ends before the line goes.
};

/// Standard output for a log: its records do not run into the line that is shown.
class ConsoleBesideWaiting final : public Platform::ConsoleOutput {
public:
    ConsoleBesideWaiting(std::shared_ptr<WaitingLine> line, std::shared_ptr<Platform::ConsoleOutput> output)
        : line(std::move(line)),
          output(std::move(output)) {}

    void print(std::string_view text) override {
        line->clear();
        output->print(text);
    }

private:
    std::shared_ptr<WaitingLine> line;
    std::shared_ptr<Platform::ConsoleOutput> output;
};

/// For a run whose standard output belongs to another program.
class SilentConsole final : public Platform::ConsoleOutput {
public:
    void print(std::string_view) override {}
};

} // namespace Companion
