#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Unicode work on UTF-8 texts. Nothing here reads the process's locale.
namespace Foundation::Text {

/// Whether `bytes` are UTF-8 (strict: no overlong form, surrogate, or value above U+10FFFF). Empty is valid.
bool isValidUTF8(std::string_view bytes);

/// `bytes` with each maximal ill-formed subsequence replaced by U+FFFD.
std::string sanitizedUTF8(std::string_view bytes);

/// Without `whitespaces` at both ends: TAB and the blanks of category Zs and U+200B, no line breaks.
std::string trimmingWhitespaces(std::string_view text);

/// Without `whitespacesAndNewlines` at both ends.
std::string trimmingWhitespacesAndNewlines(std::string_view text);

/// The pieces between `newlines`: LF, VT, FF, CR, U+0085, U+2028, U+2029, each of which ends one piece.
std::vector<std::string> componentsSeparatedByNewlines(std::string_view text);

/// Whether the scalar is of a Unicode category L*, M* or N*.
bool isAlphanumeric(char32_t scalar);

/// Whether `text` holds at least one alphanumeric scalar.
bool containsAlphanumeric(std::string_view text);

/// Title case by ICU's root locale: in each word the first cased letter upper, the others lower.
std::string capitalized(std::string_view text);

/// Lower case by ICU's root locale.
std::string lowercased(std::string_view text);

/// The scalars of a valid UTF-8 text.
std::u32string scalars(std::string_view text);

/// Byte length of the first extended grapheme cluster (UAX #29, root locale); 0 for an empty text.
std::size_t firstGraphemeLength(std::string_view text);

/// Byte length of the marks and joiners that `text` begins with: what belongs to the cluster of a letter or
/// symbol before them (UAX #29, GB9 and GB9a). Takes no longer than they are.
std::size_t clusterExtensionLength(std::string_view text);

/// At most `limit` grapheme clusters of `text`, and at most 64 bytes for each; the cut is marked by "…".
std::string truncated(std::string_view text, std::size_t limit);

/// Columns that `text` takes in a terminal: 2 for wide and emoji clusters, 0 for combining marks.
std::size_t terminalWidth(std::string_view text);

/// `text` safe to show: controls, noncharacters, bidirectional embeddings, overrides and isolates are U+FFFD,
/// line breaks and TAB a blank, soft hyphens gone. The marks U+200E, U+200F and U+061C stay in a text with
/// letters from right to left, whose neighbours they order, and go from any other, where they only deceive.
std::string neutralized(std::string_view text);

/// Whether the first strong character of `text` runs from right to left (UAX #9, rule P2).
bool startsRightToLeft(std::string_view text);

} // namespace Foundation::Text
