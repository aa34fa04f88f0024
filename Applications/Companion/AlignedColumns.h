#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Companion {

/// Rows of texts as aligned lines, two blanks between the columns, each text made harmless. All rows are
/// measured before the first is written; they need not be held for that, so that a table may be long.
class AlignedColumns final {
public:
    void measure(std::vector<std::string> const& row);

    /// The line of a row that has been measured, without a line feed and without blanks at its end.
    [[nodiscard]] std::string line(std::vector<std::string> const& row) const;

private:
    std::vector<std::size_t> widths;
};

} // namespace Companion
