#pragma once

#include "Platform/Logging/ConsoleOutput.h"

#include <memory>

namespace Companion {

/// Standard output for a log that a terminal shows: what servers sent cannot colour it, move in it or give it
/// orders. Line feeds stay, everything else that is not plain text becomes harmless.
class HarmlessConsole final : public Platform::ConsoleOutput {
public:
    explicit HarmlessConsole(std::shared_ptr<Platform::ConsoleOutput> output);

    void print(std::string_view text) override;

private:
    std::shared_ptr<Platform::ConsoleOutput> output;
};

} // namespace Companion
