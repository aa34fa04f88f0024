#pragma once

#include "Platform/WidgetHost/GLibSource.h"

#include <filesystem>
#include <map>
#include <string_view>

namespace Platform {

class FolderWatch;

/// The kernel's queue of what happens in folders, one for all watches of a process: each queue is a scarce
/// resource, and the kernel takes long to end one.
class FolderEvents final {
public:
    /// Heard on GLib's default main context. Where no queue can be had, nothing is ever told.
    FolderEvents();
    FolderEvents(FolderEvents const&) = delete;
    FolderEvents& operator=(FolderEvents const&) = delete;
    ~FolderEvents();

private:
    friend class FolderWatch;

    /// The handle of the folder's watch, below zero when it cannot be watched.
    int add(std::filesystem::path const& folder, FolderWatch& watch);
    void remove(int handle, FolderWatch& watch);

    struct Told {
        bool hasChanged = false;
        bool isLost = false;
    };
    void readEvents();
    void note(int handle, unsigned mask, std::string_view name);

    int descriptor;
    std::multimap<int, FolderWatch*> watches;
    std::map<FolderWatch*, Told> told; // To be passed on; a watch that ends meanwhile is taken out.
    GLibSource readable;
};

} // namespace Platform
