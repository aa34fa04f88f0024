#include "Platform/EventStore/Folder/ScannedFiles.h"

#include "Platform/EventStore/Index/Mixing.h"
#include "Platform/EventStore/Index/StoredIndex.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace Platform {

void ScannedFiles::add(std::string_view name, FileStamp const& stamp) {
    File const file{.nameHash = hashOf(name),
                    .stamp = stampOfFile(stamp),
                    .nameOffset = static_cast<std::uint32_t>(names.size()),
                    .nameLength = static_cast<std::uint32_t>(name.size())};
    names += name;
    sum += shareOfSum(file.nameHash, file.stamp);
    found.push_back(file);
}

void ScannedFiles::addFailure(std::string_view name, std::string reason) {
    failed.push_back({.name = std::string(name), .reason = std::move(reason)});
}

std::vector<std::uint32_t> ScannedFiles::order() const {
    std::vector<std::uint32_t> places(found.size());
    std::ranges::iota_view numbers(std::uint32_t{0}, static_cast<std::uint32_t>(found.size()));
    std::ranges::copy(numbers, places.begin());
    std::ranges::sort(places, {}, [this](std::uint32_t place) { return nameOf(found[place]); });
    return places;
}

std::uint64_t stampOfFile(FileStamp const& stamp) {
    return stampOfFile(stamp.inode, stamp.size, stamp.modified, stamp.changed);
}

} // namespace Platform
