#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace Platform {

/// Changes calendar files that other programs may change at the same time, so that a reader finds the old
/// file or the new one, whole, and nobody's change is lost.
///
/// What is new is written aside, in a hidden file of the same folder, synced, and exchanged with the file in
/// one step. Only then is looked at what came out: when that is not what the caller had read, or somebody
/// still has it open for writing, it is put back, and the caller may read again. A file system without such
/// an exchange is compared immediately before the renaming instead, which leaves a moment too short to
/// matter to a person.
///
/// A process that is killed may leave its hidden file. Its name tells what became of it, and
/// `clearLeftovers` mends the rest.
class CalendarFileWriter {
public:
    enum class Outcome : std::uint8_t {
        done,
        changedMeanwhile, ///< The file is not what was expected, or not there; it stands as it was found.
    };
    struct Failure {
        std::filesystem::path path; ///< What could not be written.
        std::error_code reason;
        bool isReadOnlyFile = false; ///< The file itself is not to be changed; its folder may be.
    };
    using Result = std::expected<Outcome, Failure>;

    /// How a file takes another's place.
    enum class Method : std::uint8_t {
        exchange,       ///< In one step, where the file system knows how.
        compareAndMove, ///< As on a file system that does not.
    };

    explicit CalendarFileWriter(Method method = Method::exchange) : method(method) {}

    /// Replaces the content of a file that holds `expected`. It keeps its permissions, its group and,
    /// where this process may give that, its owner; a link is followed. A read-only file is not changed.
    [[nodiscard]] Result replace(std::filesystem::path const& file, std::string_view expected,
                                 std::string_view content) const;

    /// Makes a file of mode 0600; `changedMeanwhile` when the name is taken.
    [[nodiscard]] Result create(std::filesystem::path const& file, std::string_view content) const;

    /// Deletes a file that holds `expected`, and the link that led to it. A read-only file is not deleted.
    [[nodiscard]] Result remove(std::filesystem::path const& file, std::string_view expected) const;

    /// Removes what killed processes left in a folder longer ago than any living one could need it. A change
    /// of another program that such a process held in its hands is put back first. `now` in nanoseconds since
    /// 1970. Failures are nobody's concern: the next one tries again.
    void clearLeftovers(std::filesystem::path const& folder, std::int64_t now) const;

private:
    static Result removeRegular(std::filesystem::path const& file, std::string_view expected);

    Method method;
};

} // namespace Platform
