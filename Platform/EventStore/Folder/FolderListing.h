#pragma once

#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/EventStore/Folder/ScannedFiles.h"
#include "Platform/EventStore/Folder/StoreProblem.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace Platform {

/// What of a folder matters to calendars. Names are bytes, in ascending order.
struct FolderListing {
    std::vector<std::string> calendarFiles; ///< Named *.ics, in any letter case; not looked into yet.
    std::vector<std::string> folders;
    bool hasCalendarFiles = false;
    bool hasDisplayName = false;
    bool hasColor = false;
    bool hasLinks = false;          ///< Wherever they lead.
    std::optional<FileStamp> stamp; ///< Of the folder itself, from before it was listed.
    std::vector<StoreProblem> problems;
    /// Why the folder could not be listed; then all else is empty.
    std::optional<std::error_code> failure;

    /// Whether the folder is a calendar: it holds one's files, or the name or colour of one that has no event
    /// at present.
    [[nodiscard]] bool isCalendar() const { return hasCalendarFiles || hasDisplayName || hasColor; }
};

/// Whether a file of that name is read as a calendar: something before ".ics", in any letter case.
bool isCalendarFileName(std::string_view name);

/// How much of a folder is looked at.
enum class ListingExtent : std::uint8_t {
    whole,
    /// What tells whether it is a calendar, and how it is named and coloured: the listing may end at its
    /// first calendar file. Other entries may be missing from it.
    untilCalendarFile,
};

/// Lists `folder`, which is `root` or lies in it. Hidden entries, and links that lead out of `root`, are left
/// out with a problem each. `root` is canonical.
FolderListing listFolder(std::filesystem::path const& folder, std::filesystem::path const& root,
                         ListingExtent extent = ListingExtent::whole);

/// What `listFolder` yields until the first calendar file, of a folder that is known to hold some: without
/// reading it, which takes long where there are many.
FolderListing listingOfCalendar(std::filesystem::path const& folder);

/// The same as `listFolder`, with a look at every calendar file; these are then in `files` and not in the
/// listing.
struct FolderScan {
    FolderListing listing;
    ScannedFiles files;
};
FolderScan scanFolder(std::filesystem::path const& folder, std::filesystem::path const& root);

} // namespace Platform
