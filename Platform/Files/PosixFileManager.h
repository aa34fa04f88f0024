#pragma once

#include "Platform/Files/FileManager.h"

#include "Foundation/Environment.h"

namespace Platform {

/// The user's files on a POSIX system, found by the environment given.
///
/// The group container is `QUILLORA_GROUP_CONTAINER`, used as it is and not made; set to nothing or to a
/// relative path it means that there is none. Unset, it is the group's folder in the data home, made with
/// mode 0700 by the lookup unless it is to be left missing.
class PosixFileManager final : public FileManager {
public:
    /// What is on the disk for certain when a write has succeeded.
    enum class Durability : std::uint8_t {
        file, ///< The content: after a power cut the name leads to the old one or the new one, whole.
        fileAndFolder, ///< The name as well: it leads to the new content. For what cannot be made again.
    };

    /// What a lookup does about a group container in the data home that is not there.
    enum class MissingContainer : std::uint8_t {
        isMade,
        isLeft, ///< Tells where it would be, if it could be made, and leaves everything as it is.
    };

    explicit PosixFileManager(Foundation::Environment environment, Durability durability = Durability::file,
                              MissingContainer missingContainer = MissingContainer::isMade);

    [[nodiscard]] std::optional<std::filesystem::path>
    containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const override;
    [[nodiscard]] std::filesystem::path temporaryDirectory() const override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() const override;
    std::error_code createDirectory(std::filesystem::path const& path) const override;
    [[nodiscard]] std::expected<std::string, std::error_code> contents(std::filesystem::path const& path,
                                                                       std::size_t mostBytes) const override;

    /// A link at `path` is replaced, never followed. What a write left that was killed more than ten minutes
    /// ago is taken out of the folder. When only the syncing of the folder fails, the new
    /// content stands and the failure is told.
    std::error_code writeAtomically(std::filesystem::path const& path,
                                    std::string_view content) const override;
    std::error_code appendToItem(std::filesystem::path const& path, std::string_view content) const override;
    std::error_code removeItem(std::filesystem::path const& path) const override;

    /// Succeeds without an effect: files bear no such marks here.
    std::error_code clearQuarantineProperties(std::filesystem::path const& path) const override;

private:
    Foundation::Environment environment;
    Durability durability;
    MissingContainer missingContainer;
};

} // namespace Platform
