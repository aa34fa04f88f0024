#include "Platform/EventStore/Folder/ScannedFiles.h"

#include "Platform/EventStore/Index/Mixing.h"
#include "Platform/EventStore/Index/StoredIndex.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <system_error>
#include <thread>
#include <utility>

namespace Platform {

namespace {

// Fewer files are not worth a thread.
constexpr std::size_t filesPerThread = 2000;
constexpr std::size_t mostThreads = 4;

} // namespace

void ScannedFiles::add(std::string_view name) {
    found.push_back({.nameHash = hashOf(name),
                     .stamp = 0,
                     .nameOffset = static_cast<std::uint32_t>(names.size()),
                     .nameLength = static_cast<std::uint32_t>(name.size())});
    names += name;
    names += '\0';
}

void ScannedFiles::lookAtAll(int folder) {
    auto const most = std::min<std::size_t>(std::thread::hardware_concurrency(), mostThreads);
    auto const parts =
        std::clamp<std::size_t>(found.size() / filesPerThread, 1, std::max<std::size_t>(most, 1));
    std::vector<std::vector<Failure>> failures(parts);
    auto const lookAtPart = [&](std::size_t part) {
        failures[part] = lookAtSome(folder, found.size() * part / parts, found.size() * (part + 1) / parts);
    };
    {
        std::vector<std::jthread> threads;
        threads.reserve(parts);
        for (std::size_t part = 1; part < parts; ++part) {
            try {
                threads.emplace_back(lookAtPart, part);
            } catch (std::system_error const&) {
                lookAtPart(part); // As many threads as may be are there already.
            }
        }
        lookAtPart(0);
    }
    for (auto& part : failures)
        std::ranges::move(part, std::back_inserter(failed));
    std::erase_if(found, [](File const& file) { return file.stamp == 0; });
    for (auto const& file : found)
        sum += shareOfSum(file.nameHash, file.stamp);
}

std::vector<ScannedFiles::Failure> ScannedFiles::lookAtSome(int folder, std::size_t first, std::size_t end) {
    std::vector<Failure> failures;
    for (auto place = first; place < end; ++place) {
        auto& file = found[place];
        if (auto const stamp = stampOfRegularFile(folder, names.data() + file.nameOffset)) {
            file.stamp = stampOfFile(*stamp);
        } else {
            failures.push_back({.name = std::string(nameOf(file)), .reason = stamp.error()});
        }
    }
    return failures;
}

std::vector<std::uint32_t> ScannedFiles::order() const {
    std::vector<std::uint32_t> places(found.size());
    std::iota(places.begin(), places.end(), std::uint32_t{0});
    std::ranges::sort(places, {}, [this](std::uint32_t place) { return nameOf(found[place]); });
    return places;
}

std::uint64_t stampOfFile(FileStamp const& stamp) {
    return stampOfFile(stamp.inode, stamp.size, stamp.modified, stamp.changed);
}

} // namespace Platform
