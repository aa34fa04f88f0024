#include "Applications/Composition/KeychainSetting.h"

#include "Applications/Composition/Texts.h"
#include "Foundation/JSON.h"
#include "Foundation/Text.h"

#include <optional>

namespace JSON = Foundation::JSON;

namespace Composition {
namespace {

std::optional<KeychainKind> kindOf(std::string_view content) {
    auto const document = JSON::parse(content);
    if (!document) return std::nullopt;
    auto const text = JSON::text(*document);
    if (!text) return std::nullopt;
    return Foundation::fromRawValue<KeychainKind>(*text);
}

} // namespace

KeychainSetting::KeychainSetting(std::filesystem::path directory,
                                 std::shared_ptr<Platform::FileManager const> files)
    : directory(std::move(directory)),
      files(std::move(files)) {}

std::filesystem::path KeychainSetting::file() const {
    return directory / "keychain.json";
}

std::expected<KeychainKind, std::string> KeychainSetting::load() const {
    auto const content = files->contents(file(), Platform::largestPreferenceFile);
    if (!content && content.error() == std::errc::no_such_file_or_directory)
        return KeychainKind::secretService;
    auto const path = Foundation::Text::sanitizedUTF8(file().string());
    if (!content) {
        return std::unexpected(Texts::unreadableKeychainChoice(path, content.error().message()));
    }
    auto const kind = kindOf(*content);
    if (!kind) {
        return std::unexpected(Texts::noKeychainNamed(path));
    }
    return *kind;
}

bool KeychainSetting::isRecorded() const {
    auto const content = files->contents(file(), Platform::largestPreferenceFile);
    return content || content.error() != std::errc::no_such_file_or_directory;
}

std::error_code KeychainSetting::save(KeychainKind kind) const {
    if (auto const failure = files->createDirectory(directory)) return failure;
    return files->writeAtomically(file(), "\"" + std::string(Foundation::rawValue(kind)) + "\"");
}

} // namespace Composition
