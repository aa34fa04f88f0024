#pragma once

#include "Applications/Companion/Texts.h"
#include "Applications/Composition/ProgramTexts.h"
#include "Applications/Composition/Texts.h"

#include <cstdint>
#include <string>
#include <string_view>

/// How the files that define the program's texts ask the tables. Nobody else needs it.
namespace Companion::Texts {

Composition::ProgramTexts& words();

/// The text of `key` with its places filled, in the order in which the values stand here.
template <typename... Values>
    requires(sizeof...(Values) > 0)
std::string text(std::string_view key, Values const&... values) {
    return words().text(key, values...);
}

/// The form of the text that goes with `count`, which is its first value.
template <typename... Values>
std::string counted(std::string_view key, std::int64_t count, Values const&... values) {
    return words().counted(key, count, values...);
}

using Composition::Texts::quoted;

} // namespace Companion::Texts
