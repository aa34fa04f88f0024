#include "Applications/Companion/AlignedColumns.h"

#include "Foundation/Text.h"

#include <algorithm>

namespace Companion {

namespace Text = Foundation::Text;

void AlignedColumns::measure(std::vector<std::string> const& row) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column)
        widths[column] = std::max(widths[column], Text::terminalWidth(Text::neutralized(row[column])));
}

std::string AlignedColumns::line(std::vector<std::string> const& row) const {
    std::string line;
    std::size_t missing = 0; // Blanks owed to the next text, so that no line ends with any.
    for (std::size_t column = 0; column < row.size(); ++column) {
        auto const text = Text::neutralized(row[column]);
        if (!text.empty()) {
            line += std::string(missing, ' ') + text;
            missing = 0;
        }
        missing += widths[column] - Text::terminalWidth(text) + 2;
    }
    return line;
}

} // namespace Companion
