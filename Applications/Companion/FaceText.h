#pragma once

#include "Platform/Face/FaceLayout.h"

#include <cstddef>
#include <optional>
#include <string>

namespace Companion {

/// How a face may be written.
struct FaceTextStyle {
    bool showsColors;
    /// Columns of the terminal; absent for a pipe or file, where a line takes at most 100. Longer names are
    /// cut.
    std::optional<std::size_t> columns;
};

/// `text` in at most `columns`, the cut marked by "…"; never in the middle of a grapheme cluster.
std::string cutToColumns(std::string const& text, std::size_t columns);

/// The face for a terminal, a row a line, cards in columns. Foreign texts are made harmless: they can
/// neither break a line nor send an escape sequence. Ends with a line feed.
std::string faceText(Platform::FaceLayout const& layout, FaceTextStyle const& style);

} // namespace Companion
