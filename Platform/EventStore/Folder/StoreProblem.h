#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <string>

namespace Platform {

/// Something in the person's calendars that the store could not take as it stands.
struct StoreProblem {
    enum class Effect : std::uint8_t {
        skipped,  ///< Something is not shown.
        adjusted, ///< It is shown, with what the reason says.
        ignored,  ///< Left out by rule: a hidden file, a deeper folder, a link out of the root.
    };

    std::filesystem::path path; ///< The folder or file at fault.
    std::int64_t line;          ///< Of the file, from 1; 0 for the whole of it.
    Effect effect;
    std::string reason; ///< Why, for people.

    friend auto operator<=>(StoreProblem const&, StoreProblem const&) = default;
};

/// "FILE:LINE: REASON", valid UTF-8 whatever the file's name.
std::string describe(StoreProblem const& problem);

} // namespace Platform
