#pragma once

#include <string_view>

namespace Platform {

/// The process's standard output.
class ConsoleOutput {
public:
    virtual ~ConsoleOutput() = default;

    /// Writes at once, unbuffered. A closed output is no error.
    virtual void print(std::string_view text) = 0;
};

} // namespace Platform
