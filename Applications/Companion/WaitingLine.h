#pragma once

#include "Foundation/Environment.h"
#include "Platform/Logging/ConsoleOutput.h"

#include <chrono>
#include <memory>
#include <string>

namespace Companion {

/// One line on standard error that tells a person what is waited for and how long, and goes again at the end.
/// Only on a terminal: a script's standard error holds what went wrong and nothing else.
class WaitingLine final {
public:
    WaitingLine(std::string what, Foundation::Environment const& environment);
    ~WaitingLine() { clear(); }

    WaitingLine(WaitingLine const&) = delete;
    WaitingLine& operator=(WaitingLine const&) = delete;

    void show(std::chrono::seconds elapsed);
    void clear();

private:
    std::string what;
    bool isTerminal;
    bool isShown = false;
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
