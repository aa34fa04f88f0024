#pragma once

#include "Foundation/URL.h"
#include "Platform/Files/FileManager.h"

#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace Composition {

/// Which backend the person logged in to, and whether the exchanges with it are logged: backend.json (one
/// JSON text, the base URL) and backend-log.json (one JSON boolean) in the configuration folder. They are
/// read anew at each call and written whole or not at all. The token is not here but in the keychain.
class BackendSetting final {
public:
    BackendSetting(std::filesystem::path directory, std::shared_ptr<Platform::FileManager const> files);

    /// Absent when nobody is logged in. A file that cannot be read, or that holds no URL, is an error, a
    /// sentence for the person.
    [[nodiscard]] std::expected<std::optional<Foundation::URL>, std::string> baseURL() const;

    /// On an error the old one stays.
    [[nodiscard]] std::error_code saveBaseURL(Foundation::URL const& url) const;

    /// None to forget is no error.
    [[nodiscard]] std::error_code forgetBaseURL() const;

    /// False when the file is missing or unreadable.
    [[nodiscard]] bool isLogEnabled() const;

    [[nodiscard]] std::error_code saveLogEnabled(bool isEnabled) const;

    [[nodiscard]] std::filesystem::path file() const;
    [[nodiscard]] std::filesystem::path logFile() const;

private:
    [[nodiscard]] std::error_code save(std::filesystem::path const& path, std::string const& content) const;

    std::filesystem::path directory;
    std::shared_ptr<Platform::FileManager const> files;
};

} // namespace Composition
