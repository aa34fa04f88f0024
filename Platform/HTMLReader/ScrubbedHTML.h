#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// Characters that stand for "<" and "&" of the text in scrubbed HTML. Unicode keeps them for a program's own
/// use, and no scrubbed text holds them otherwise.
inline constexpr std::string_view scrubbedLessThan = "\uFDD0";
inline constexpr std::string_view scrubbedAmpersand = "\uFDD1";

/// `html`, which is UTF-8, written anew with all that its visible text does not depend on left out: comments,
/// scripts, styles, the head, pictures, attributes. What remains has a dozen kinds of element, `hidden`,
/// `start` and `value` attributes, no character reference, and no end tag without its start tag. What a
/// parser of the general language is slow at is so never met. Takes time in proportion to the text; reading
/// ends at HTMLLimits::bytes and HTMLLimits::tags, and at a tag or comment that has no end.
std::string scrubbedHTML(std::string_view html);

} // namespace Platform
