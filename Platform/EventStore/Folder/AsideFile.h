#pragma once

#include "Platform/EventStore/Folder/FileRights.h"
#include "Platform/Files/FileDescriptor.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/types.h>

namespace Platform {

/// What the name of a hidden file tells of the change that it was made for.
struct AsideName {
    std::string oldDigest; ///< Of the content that the file was expected to have.
    std::string newDigest; ///< Of the content that it gets.
    std::string fileName;  ///< Of the file; empty when it is too long to be told.

    /// ".quillora-… .tmp", different at each call.
    [[nodiscard]] std::string text() const;

    /// Absent for a name of any other kind.
    static std::optional<AsideName> fromText(std::string_view text);

    /// The digest of a content, and of a file that is not there.
    static std::string digestOf(std::string_view content);
    static std::string digestOfNothing();
};

/// The hidden file of one change. It is removed with this object, whatever it then holds, unless `keep` was
/// called.
class AsideFile {
public:
    AsideFile(std::filesystem::path const& folder, AsideName const& name);
    ~AsideFile();
    AsideFile(AsideFile const&) = delete;
    AsideFile& operator=(AsideFile const&) = delete;

    /// Creates it with that content and those rights, synced to the disk.
    std::error_code fill(std::string_view content, FileRights const& rights);

    [[nodiscard]] std::filesystem::path const& path() const { return file; }

    /// The inode that `fill` made.
    [[nodiscard]] ino_t inode() const { return ownInode; }

    /// From now on there is something under its name that must go with the object.
    void exists() { isThere = true; }
    /// Its name is free, or holds what must stay.
    void release() { isThere = false; }

private:
    std::error_code write(FileDescriptor& descriptor, std::string_view content, FileRights const& rights);

    std::filesystem::path file;
    ino_t ownInode = 0;
    bool isThere = false;
};

} // namespace Platform
