#pragma once

#include "Platform/Logging/ConsoleOutput.h"

#include <string>

namespace Platform {

/// Keeps what was printed.
class RecordingConsoleOutput final : public ConsoleOutput {
public:
    void print(std::string_view text) override { printed += text; }

    std::string printed;
};

} // namespace Platform
