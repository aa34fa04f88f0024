#pragma once

#include "Platform/Files/FileManager.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <vector>

namespace Platform {

/// Files that live in this object: for tests, and for previews that must leave nothing behind. It keeps the
/// history of what was asked of it, and may be told to fail.
class InMemoryFileManager final : public FileManager {
public:
    /// One operation that changes files or reads one, whether it succeeded or not.
    struct Operation {
        enum class Kind : std::uint8_t { createDirectory, read, write, append, remove, clearQuarantine };
        Kind kind;
        std::filesystem::path path;
        bool succeeded;

        bool operator==(Operation const&) const = default;
    };

    /// The group container is "/container", the data home "/data", the temporary folder "/tmp"; all exist.
    InMemoryFileManager();

    /// From now on there is no group container, as in a program outside of the group.
    void withoutContainer();
    /// From now on the lookup names a container whose folder has gone.
    void withVanishedContainer();
    /// From now on there is no data home.
    void withoutApplicationSupport();
    /// After so many more successful writes every further one fails as on a full disk.
    void failsAfter(std::size_t writes);
    /// From now on every read fails as without permission.
    void refusesReads();

    /// Puts a file there, and the folders above it, without a trace in the history.
    void place(std::filesystem::path const& path, std::string content, std::uint32_t mode = 0600);

    [[nodiscard]] std::vector<Operation> history() const;
    /// The content as it stands; absent when no such file exists.
    [[nodiscard]] std::optional<std::string> content(std::filesystem::path const& path) const;
    [[nodiscard]] std::optional<std::uint32_t> mode(std::filesystem::path const& path) const;
    [[nodiscard]] std::vector<std::filesystem::path> files() const;
    /// How many successful writes the path has seen.
    [[nodiscard]] std::size_t writeCount(std::filesystem::path const& path) const;

    [[nodiscard]] std::optional<std::filesystem::path>
    containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const override;
    [[nodiscard]] std::filesystem::path temporaryDirectory() const override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() const override;
    std::error_code createDirectory(std::filesystem::path const& path) const override;
    [[nodiscard]] std::expected<std::string, std::error_code> contents(std::filesystem::path const& path,
                                                                       std::size_t mostBytes) const override;
    std::error_code writeAtomically(std::filesystem::path const& path,
                                    std::string_view content) const override;
    std::error_code appendToItem(std::filesystem::path const& path, std::string_view content) const override;
    std::error_code removeItem(std::filesystem::path const& path) const override;
    std::error_code clearQuarantineProperties(std::filesystem::path const& path) const override;

private:
    struct File {
        std::string content;
        std::uint32_t mode;
    };

    std::error_code recording(Operation::Kind kind, std::filesystem::path const& path,
                              std::error_code failure) const;
    std::error_code write(std::filesystem::path const& path, std::string_view content) const;
    std::error_code makeFolders(std::filesystem::path const& path) const;

    // The interface's operations leave the object as it is and change the files; here both are one.
    mutable std::mutex mutex;
    mutable std::map<std::filesystem::path, File> entries;
    mutable std::set<std::filesystem::path> folders;
    mutable std::vector<Operation> operations;
    mutable std::optional<std::size_t> writesLeft;
    std::optional<std::filesystem::path> container;
    std::optional<std::filesystem::path> dataHome;
    bool readsAreRefused = false;
};

} // namespace Platform
