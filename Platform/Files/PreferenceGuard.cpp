#include "Platform/Files/PreferenceGuard.h"

#include "Foundation/JSON.h"
#include "Foundation/Text.h"
#include "Platform/Files/FreeName.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace Platform {

namespace JSON = Foundation::JSON;

bool isWhole(GuardedPreference::Form form, std::string_view content) {
    auto const document = JSON::parse(content);
    if (!document) return false;
    switch (form) {
    case GuardedPreference::Form::object: return std::holds_alternative<JSON::Object>(document->storage);
    case GuardedPreference::Form::listOfTexts: return JSON::textList(*document).has_value();
    }
    std::unreachable();
}

PreferenceGuard::PreferenceGuard(std::shared_ptr<FileManager const> files,
                                 std::vector<GuardedPreference> preferences, Tell tell)
    : files(std::move(files)),
      preferences(std::move(preferences)),
      tell(std::move(tell)) {}

std::optional<std::filesystem::path>
PreferenceGuard::containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const {
    return files->containerURLForSecurityApplicationGroupIdentifier(group);
}

std::filesystem::path PreferenceGuard::temporaryDirectory() const {
    return files->temporaryDirectory();
}

std::optional<std::filesystem::path> PreferenceGuard::applicationSupportDirectory() const {
    return files->applicationSupportDirectory();
}

std::error_code PreferenceGuard::createDirectory(std::filesystem::path const& path) const {
    return files->createDirectory(path);
}

std::expected<std::string, std::error_code> PreferenceGuard::contents(std::filesystem::path const& path,
                                                                      std::size_t mostBytes) const {
    auto content = files->contents(path, mostBytes);
    auto const* const preference = preferenceAt(path);
    if (preference == nullptr) return content;
    if (content && !isWhole(preference->form, *content)) {
        tellOnce(path, "the file is damaged, so nothing in it counts; the next change keeps a copy of it and "
                       "starts anew");
    } else if (!content && content.error() != std::errc::no_such_file_or_directory) {
        tellOnce(path,
                 "the file could not be read (" + content.error().message() + "), so nothing in it counts");
    }
    return content;
}

std::error_code PreferenceGuard::writeAtomically(std::filesystem::path const& path,
                                                 std::string_view content) const {
    auto const* const preference = preferenceAt(path);
    if (preference != nullptr && preference->keeper == GuardedPreference::Keeper::guard)
        if (auto const failure = keepDamaged(path, *preference)) return failure;
    return files->writeAtomically(path, content);
}

std::error_code PreferenceGuard::appendToItem(std::filesystem::path const& path,
                                              std::string_view content) const {
    return files->appendToItem(path, content);
}

std::error_code PreferenceGuard::removeItem(std::filesystem::path const& path) const {
    return files->removeItem(path);
}

std::error_code PreferenceGuard::clearQuarantineProperties(std::filesystem::path const& path) const {
    return files->clearQuarantineProperties(path);
}

GuardedPreference const* PreferenceGuard::preferenceAt(std::filesystem::path const& path) const {
    auto const found = std::ranges::find(preferences, path.filename().string(), &GuardedPreference::fileName);
    return found == preferences.end() ? nullptr : &*found;
}

void PreferenceGuard::tellOnce(std::filesystem::path const& path, std::string const& reason) const {
    auto const message = Foundation::Text::sanitizedUTF8(path.string()) + ": " + reason;
    {
        std::scoped_lock const lock(mutex);
        if (!told.insert(message).second) return;
    }
    tell(message);
}

// What cannot be understood may still be mended by hand.
std::error_code PreferenceGuard::keepDamaged(std::filesystem::path const& path,
                                             GuardedPreference const& preference) const {
    auto const present = files->contents(path, largestPreferenceFile);
    if (!present)
        return present.error() == std::errc::no_such_file_or_directory ? std::error_code() : present.error();
    if (isWhole(preference.form, *present)) return {};
    return files->writeAtomically(freeName(*files, path.string() + ".damaged"), *present);
}

} // namespace Platform
