#pragma once

#include "Platform/Files/FileManager.h"

#include <memory>
#include <optional>
#include <utility>

namespace Platform {

/// The user's files, with a memory for what could not be written: the preference stores never fail aloud, and
/// a person wants to know why. Not for use from several threads.
class WriteWitness final : public FileManager {
public:
    struct Failure {
        std::filesystem::path path;
        std::error_code error;
    };

    explicit WriteWitness(std::shared_ptr<FileManager const> files) : files(std::move(files)) {}

    /// The last write that failed.
    [[nodiscard]] std::optional<Failure> const& lastFailure() const { return failure; }

    [[nodiscard]] std::optional<std::filesystem::path>
    containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const override {
        return files->containerURLForSecurityApplicationGroupIdentifier(group);
    }
    [[nodiscard]] std::filesystem::path temporaryDirectory() const override {
        return files->temporaryDirectory();
    }
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() const override {
        return files->applicationSupportDirectory();
    }
    std::error_code createDirectory(std::filesystem::path const& path) const override {
        return witnessed(path, files->createDirectory(path));
    }
    [[nodiscard]] std::expected<std::string, std::error_code> contents(std::filesystem::path const& path,
                                                                       std::size_t mostBytes) const override {
        return files->contents(path, mostBytes);
    }
    std::error_code writeAtomically(std::filesystem::path const& path,
                                    std::string_view content) const override {
        return witnessed(path, files->writeAtomically(path, content));
    }
    std::error_code appendToItem(std::filesystem::path const& path, std::string_view content) const override {
        return witnessed(path, files->appendToItem(path, content));
    }
    std::error_code removeItem(std::filesystem::path const& path) const override {
        return witnessed(path, files->removeItem(path));
    }
    std::error_code clearQuarantineProperties(std::filesystem::path const& path) const override {
        return witnessed(path, files->clearQuarantineProperties(path));
    }

private:
    std::error_code witnessed(std::filesystem::path const& path, std::error_code error) const {
        if (error) failure = Failure{.path = path, .error = error};
        return error;
    }

    std::shared_ptr<FileManager const> files;
    mutable std::optional<Failure> failure;
};

} // namespace Platform
