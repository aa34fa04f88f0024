#pragma once

#include "ChildProcess.h"

#include <string>

/// An X server without a screen.
class DisplayServer {
public:
    DisplayServer();

    /// What DISPLAY has to be.
    [[nodiscard]] std::string const& name() const { return displayName; }

private:
    ChildProcess server;
    std::string displayName;
};
