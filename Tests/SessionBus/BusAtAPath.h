#pragma once

#include "Tests/WidgetHost/ChildProcess.h"

#include <filesystem>
#include <memory>
#include <string>

/// A bus at an address of the test's choosing, so that it can end and come back.
class BusAtAPath {
public:
    BusAtAPath();
    BusAtAPath(BusAtAPath const&) = delete;
    BusAtAPath& operator=(BusAtAPath const&) = delete;
    ~BusAtAPath();

    [[nodiscard]] std::string address() const;

    /// Ends it, and whoever was connected is alone.
    void end();
    /// Returns when it takes connections.
    void begin();

private:
    std::filesystem::path folder;
    std::unique_ptr<ChildProcess> daemon;
};
