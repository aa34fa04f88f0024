#pragma once

#include "Platform/EventStore/Folder/RegularFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// The calendar files of one folder with their stamps, as one look at it found them. Made for folders of a
/// hundred thousand: what it keeps of a file is its name and two numbers.
class ScannedFiles {
public:
    struct File {
        std::uint64_t nameHash;
        std::uint64_t stamp; ///< By `stampOfFile`.
        std::uint32_t nameOffset;
        std::uint32_t nameLength;
    };
    struct Failure {
        std::string name;
        std::string reason;
    };

    /// A file that is to be looked at.
    void add(std::string_view name);

    /// Looks at all files that were added, in the open folder that they lie in. A file whose stamp cannot be
    /// had becomes a failure. Many files are looked at on several threads: nearly all of the time goes into
    /// the system's calls.
    void lookAtAll(int folder);

    /// In no order.
    [[nodiscard]] std::vector<File> const& files() const { return found; }
    [[nodiscard]] std::vector<Failure> const& failures() const { return failed; }
    [[nodiscard]] std::string_view nameOf(File const& file) const {
        return std::string_view(names).substr(file.nameOffset, file.nameLength);
    }
    [[nodiscard]] bool empty() const { return found.empty() && failed.empty(); }

    /// Tells two states of a folder apart, whatever order its files were found in.
    [[nodiscard]] std::uint64_t stampSum() const { return sum; }

    /// The places among `files` in the order of names.
    [[nodiscard]] std::vector<std::uint32_t> order() const;

private:
    std::vector<Failure> lookAtSome(int folder, std::size_t first, std::size_t end);

    std::vector<File> found;
    std::vector<Failure> failed;
    std::string names; // Each with a NUL behind it, as the system wants it.
    std::uint64_t sum = 0;
};

/// What an index compares of a stamp.
std::uint64_t stampOfFile(FileStamp const& stamp);

} // namespace Platform
