#pragma once

#include "Platform/Logging/ConsoleOutput.h"

namespace Platform {

/// The real standard output, written to without a buffer of our own.
class StandardConsoleOutput final : public ConsoleOutput {
public:
    void print(std::string_view text) override;
};

} // namespace Platform
