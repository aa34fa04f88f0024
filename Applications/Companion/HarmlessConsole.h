#pragma once

#include "Platform/Logging/ConsoleOutput.h"

#include <memory>
#include <string>
#include <string_view>

namespace Companion {

/// `text` so that a terminal only shows it: line feeds stay, all else that is not plain text becomes
/// harmless.
std::string harmlessLines(std::string_view text);

/// Standard output for a log that a terminal shows: what servers sent cannot colour it, move in it or give it
/// orders.
class HarmlessConsole final : public Platform::ConsoleOutput {
public:
    explicit HarmlessConsole(std::shared_ptr<Platform::ConsoleOutput> output);

    void print(std::string_view text) override;

private:
    std::shared_ptr<Platform::ConsoleOutput> output;
};

} // namespace Companion
