#pragma once

#include "Platform/Clock/Clock.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/Files/FileManager.h"
#include "Platform/Logging/ConsoleOutput.h"
#include "Platform/URLSession/URLSession.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Networking {

/// What the logger writes to and reads the time from.
struct NetworkLoggerServices {
    std::shared_ptr<Platform::FileManager const> files;
    std::shared_ptr<Platform::ConsoleOutput> console;
    std::shared_ptr<Platform::Clock const> clock;
    std::shared_ptr<Platform::RegionSettings const> region;
};

/// Traces exchanges: each record goes to standard output and to "Quillora/Logs/network.log" in the data
/// home. Headers are never written, nor is the request's token wherever else it stands. No failure of it
/// reaches the caller. The file grows until somebody deletes it.
class NetworkLogger final {
public:
    /// Finds and makes the log's folder, also when it is not enabled.
    NetworkLogger(bool isEnabled, NetworkLoggerServices services);

    /// Where the records go; absent where no data home is known.
    [[nodiscard]] static std::optional<std::filesystem::path> logFile(Platform::FileManager const& files);

    /// Whether `log` does anything.
    [[nodiscard]] bool isEnabled() const { return writesRecords; }

    void log(std::string_view endpoint, Platform::URLRequest const& request, std::string_view response) const;

private:
    void append(std::string_view record) const;

    bool writesRecords;
    NetworkLoggerServices services;
    std::optional<std::filesystem::path> logFileURL; ///< Absent where no data home is known.
};

} // namespace Networking
