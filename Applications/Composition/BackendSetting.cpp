#include "Applications/Composition/BackendSetting.h"

#include "Applications/Composition/Texts.h"
#include "Foundation/JSON.h"
#include "Foundation/Text.h"

namespace JSON = Foundation::JSON;

namespace Composition {

BackendSetting::BackendSetting(std::filesystem::path directory,
                               std::shared_ptr<Platform::FileManager const> files)
    : directory(std::move(directory)),
      files(std::move(files)) {}

std::filesystem::path BackendSetting::file() const {
    return directory / "backend.json";
}

std::filesystem::path BackendSetting::logFile() const {
    return directory / "backend-log.json";
}

std::expected<std::optional<Foundation::URL>, std::string> BackendSetting::baseURL() const {
    auto const content = files->contents(file(), Platform::largestPreferenceFile);
    if (!content && content.error() == std::errc::no_such_file_or_directory)
        return std::optional<Foundation::URL>();
    auto const path = Foundation::Text::sanitizedUTF8(file().string());
    if (!content) return std::unexpected(Texts::unreadableBackend(path, content.error().message()));
    auto const document = JSON::parse(*content);
    auto const text = document ? JSON::text(*document) : std::unexpected(document.error());
    if (!text) return std::unexpected(Texts::noBackendNamed(path));
    return Foundation::URL{.absoluteString = *text};
}

std::error_code BackendSetting::saveBaseURL(Foundation::URL const& url) const {
    auto const content = JSON::serialize(url.absoluteString);
    if (!content) return std::make_error_code(std::errc::illegal_byte_sequence);
    return save(file(), *content);
}

std::error_code BackendSetting::forgetBaseURL() const {
    auto const error = files->removeItem(file());
    return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}

bool BackendSetting::isLogEnabled() const {
    auto const content = files->contents(logFile(), Platform::largestPreferenceFile);
    auto const document = content ? JSON::parse(*content) : std::unexpected(JSON::DecodeFailure::keyMissing);
    return document && JSON::boolean(*document).value_or(false);
}

std::error_code BackendSetting::saveLogEnabled(bool isEnabled) const {
    return save(logFile(), isEnabled ? "true" : "false");
}

std::error_code BackendSetting::save(std::filesystem::path const& path, std::string const& content) const {
    if (auto const failure = files->createDirectory(directory)) return failure;
    return files->writeAtomically(path, content);
}

} // namespace Composition
