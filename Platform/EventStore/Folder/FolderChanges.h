#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <unordered_map>

namespace Platform {

/// Tells which folders have changed since one last looked at them. The system notes the events meanwhile: no
/// thread waits for them, and a folder at rest costs one look at itself. Not safe for use from two threads at
/// once.
class FolderChanges {
public:
    enum class State : std::uint8_t {
        unknown,   ///< It is not watched, or cannot be: only a look tells.
        unchanged, ///< Nothing has happened in it since the last `watch`.
        changed,
    };

    FolderChanges();
    FolderChanges(FolderChanges const&) = delete;
    FolderChanges& operator=(FolderChanges const&) = delete;
    ~FolderChanges();

    /// What is noted of the folder since the last `watch`. A change of a file that only a link in the folder
    /// leads to is not noted.
    State state(std::filesystem::path const& folder);

    /// Begins to note what happens in the folder; to be called before one looks at it. Not every file system
    /// tells of its changes, and there are only so many watches; then the state stays unknown.
    void watch(std::filesystem::path const& folder);

private:
    struct Folder {
        int watch; // -1 once it is over.
        std::uint64_t device;
        std::uint64_t inode;
        bool hasChanged;
    };

    void readEvents();
    void changeAll();

    int descriptor;
    std::map<std::filesystem::path, Folder> folders;
    std::unordered_map<int, std::filesystem::path> watches;
};

} // namespace Platform
