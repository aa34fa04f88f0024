#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// A table of texts, read from the form `"key" = "value";` with comments in `/* */` and after `//`. Escapes
/// are \n, \t, \r, \", \', \\ and \uXXXX (\UXXXX too; a pair of them for what lies above U+FFFF).
struct StringsFile {
    /// An entry that could not be read and was left out, or a text that was mended.
    struct Problem {
        std::size_t line;   ///< 1 for the first line.
        std::string reason; ///< What was wrong and what was made of it.

        bool operator==(Problem const&) const = default;
    };

    std::map<std::string, std::string, std::less<>> texts;
    std::vector<Problem> problems;

    /// Reads the whole file. A broken entry is reported and skipped up to its semicolon or the end of its
    /// line; of equal keys the first one stays. Bytes that are not UTF-8 become U+FFFD and are reported.
    static StringsFile parse(std::string_view content);

    /// The text of `key`.
    [[nodiscard]] std::optional<std::string> find(std::string_view key) const;

    /// The text of `key` that goes with `count` in `language`: that of "key.one", "key.few" and the like,
    /// else that of "key.other".
    [[nodiscard]] std::optional<std::string> findCounted(std::string_view key, std::int64_t count,
                                                         std::string const& language) const;
};

} // namespace Platform
