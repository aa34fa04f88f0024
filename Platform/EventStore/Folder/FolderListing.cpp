#include "Platform/EventStore/Folder/FolderListing.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>

namespace Platform {

namespace {

constexpr auto displayNameFile = "displayname";
constexpr auto colorFile = "color";

enum class EntryKind : std::uint8_t { folder, file, link, unknown };

EntryKind kindOf(char const* name, unsigned char type, int folder) {
    if (type == DT_UNKNOWN) {
        struct stat status{};
        if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return EntryKind::unknown;
        if (S_ISDIR(status.st_mode)) type = DT_DIR;
        if (S_ISLNK(status.st_mode)) type = DT_LNK;
    }
    if (type == DT_DIR) return EntryKind::folder;
    if (type == DT_LNK) return EntryKind::link;
    return EntryKind::file;
}

// Strictly below: a link to the root itself would show every file twice.
bool liesBelow(std::filesystem::path const& path, std::filesystem::path const& root) {
    auto const [rootEnd, pathEnd] = std::ranges::mismatch(root, path);
    return rootEnd == root.end() && pathEnd != path.end();
}

class Lister {
public:
    Lister(std::filesystem::path const& folder, std::filesystem::path const& root, ListingExtent extent)
        : folder(folder),
          root(root),
          extent(extent) {}
    Lister(std::filesystem::path const& folder, std::filesystem::path const& root, ScannedFiles& files)
        : folder(folder),
          root(root),
          extent(ListingExtent::whole),
          files(&files) {}

    FolderListing list() {
        std::unique_ptr<DIR, decltype([](DIR* open) { ::closedir(open); })> const directory(
            ::opendir(folder.c_str()));
        if (!directory) return failed();
        descriptor = ::dirfd(directory.get());
        listing.stamp = stampOfFolder(descriptor);
        while (extent == ListingExtent::whole || !listing.hasCalendarFiles) {
            errno = 0;
            auto const* const entry = ::readdir(directory.get());
            if (!entry && errno != 0) return failed();
            if (!entry) break;
            take(entry->d_name, entry->d_type);
        }
        if (extent == ListingExtent::untilCalendarFile) {
            // These may come behind the calendar file.
            for (auto const* const name : {displayNameFile, colorFile}) {
                struct stat status{};
                if (::fstatat(descriptor, name, &status, AT_SYMLINK_NOFOLLOW) == 0) take(name, DT_UNKNOWN);
            }
        }
        if (files != nullptr) files->lookAtAll(descriptor);
        std::ranges::sort(listing.calendarFiles);
        std::ranges::sort(listing.folders);
        std::ranges::sort(listing.problems);
        return std::move(listing);
    }

private:
    static FolderListing failed() {
        FolderListing failure;
        failure.failure = std::error_code(errno, std::generic_category());
        return failure;
    }

    void take(char const* name, unsigned char type) {
        if (name[0] == '.') {
            bool const isItselfOrAbove = name[1] == '\0' || (name[1] == '.' && name[2] == '\0');
            if (!isItselfOrAbove) ignore(name, "hidden files and folders are not read");
            return;
        }
        auto const kind = kindOf(name, type, descriptor);
        if (kind == EntryKind::link) return takeLink(name);
        if (kind == EntryKind::folder) {
            listing.folders.emplace_back(name);
        } else {
            takeFile(name);
        }
    }

    void takeLink(std::string const& name) {
        listing.hasLinks = true;
        std::error_code failure;
        auto const target = std::filesystem::canonical(folder / name, failure);
        if (failure) {
            if (!isCalendarFileName(name)) return ignore(name, "it is a link that leads nowhere");
            listing.problems.push_back(
                {.path = folder / name,
                 .line = 0,
                 .effect = StoreProblem::Effect::skipped,
                 .reason = "it is a link that leads nowhere (" + failure.message() + ")"});
            return;
        }
        if (!liesBelow(target, root))
            return ignore(name, "it is a link that leads out of the calendar folder");
        if (std::filesystem::is_directory(target, failure)) {
            listing.folders.push_back(name);
        } else {
            takeFile(name.c_str());
        }
    }

    void takeFile(char const* name) {
        if (std::string_view(name) == displayNameFile) listing.hasDisplayName = true;
        if (std::string_view(name) == colorFile) listing.hasColor = true;
        if (!isCalendarFileName(name)) return;
        listing.hasCalendarFiles = true;
        if (files == nullptr) {
            listing.calendarFiles.emplace_back(name);
        } else {
            files->add(name);
        }
    }

    void ignore(std::string const& name, std::string reason) {
        listing.problems.push_back({.path = folder / name,
                                    .line = 0,
                                    .effect = StoreProblem::Effect::ignored,
                                    .reason = std::move(reason)});
    }

    std::filesystem::path const& folder;
    std::filesystem::path const& root;
    ListingExtent extent;
    ScannedFiles* files = nullptr; // Where calendar files go with their stamps, if anywhere.
    int descriptor = -1;
    FolderListing listing;
};

} // namespace

bool isCalendarFileName(std::string_view name) {
    constexpr std::string_view suffix = ".ics";
    if (name.size() <= suffix.size()) return false;
    auto const same = [](char left, char right) {
        return (left >= 'A' && left <= 'Z' ? static_cast<char>(left - 'A' + 'a') : left) == right;
    };
    return std::ranges::equal(name.substr(name.size() - suffix.size()), suffix, same);
}

FolderListing listFolder(std::filesystem::path const& folder, std::filesystem::path const& root,
                         ListingExtent extent) {
    return Lister(folder, root, extent).list();
}

FolderListing listingOfCalendar(std::filesystem::path const& folder) {
    auto const isThere = [&](char const* name) {
        struct stat status{};
        return ::lstat((folder / name).c_str(), &status) == 0;
    };
    FolderListing listing;
    listing.hasCalendarFiles = true;
    listing.hasDisplayName = isThere(displayNameFile);
    listing.hasColor = isThere(colorFile);
    return listing;
}

FolderScan scanFolder(std::filesystem::path const& folder, std::filesystem::path const& root) {
    FolderScan scan;
    scan.listing = Lister(folder, root, scan.files).list();
    return scan;
}

} // namespace Platform
