#pragma once

#include "Platform/Files/FileManager.h"

#include <map>
#include <memory>
#include <utility>

namespace Companion {

/// The user's files as they are, with changes that stay in memory: a command can look at another day
/// through the very same stores without moving the widget. Not for use from several threads.
class UnsavedFiles final : public Platform::FileManager {
public:
    explicit UnsavedFiles(std::shared_ptr<Platform::FileManager const> saved) : saved(std::move(saved)) {}

    [[nodiscard]] std::optional<std::filesystem::path>
    containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const override {
        return saved->containerURLForSecurityApplicationGroupIdentifier(group);
    }
    [[nodiscard]] std::filesystem::path temporaryDirectory() const override {
        return saved->temporaryDirectory();
    }
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() const override {
        return saved->applicationSupportDirectory();
    }
    std::error_code createDirectory(std::filesystem::path const&) const override { return {}; }

    [[nodiscard]] std::expected<std::string, std::error_code> contents(std::filesystem::path const& path,
                                                                       std::size_t mostBytes) const override {
        auto const found = unsaved.find(path);
        if (found == unsaved.end()) return saved->contents(path, mostBytes);
        if (found->second && found->second->size() > mostBytes)
            return std::unexpected(std::make_error_code(std::errc::file_too_large));
        return found->second;
    }

    std::error_code writeAtomically(std::filesystem::path const& path,
                                    std::string_view content) const override {
        unsaved.insert_or_assign(path, std::string(content));
        return {};
    }

    std::error_code appendToItem(std::filesystem::path const& path, std::string_view content) const override {
        auto const before = contents(path, Platform::largestPreferenceFile);
        if (!before && before.error() != std::errc::no_such_file_or_directory) return before.error();
        return writeAtomically(path, before.value_or("") + std::string(content));
    }

    std::error_code removeItem(std::filesystem::path const& path) const override {
        unsaved.insert_or_assign(path,
                                 std::unexpected(std::make_error_code(std::errc::no_such_file_or_directory)));
        return {};
    }

    std::error_code clearQuarantineProperties(std::filesystem::path const&) const override { return {}; }

private:
    std::shared_ptr<Platform::FileManager const> saved;
    mutable std::map<std::filesystem::path, std::expected<std::string, std::error_code>> unsaved;
};

} // namespace Companion
