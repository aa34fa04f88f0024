#pragma once

#include <cstdint>
#include <string_view>

namespace Platform {

/// What an element is to the visible text. Elements that differ only in their looks are one.
enum class HTMLElement : std::uint8_t {
    division, ///< Any block.
    span,     ///< Anything within a line, and whatever is unknown.
    paragraph,
    preformatted, ///< Its blanks and line breaks stand.
    unorderedList,
    orderedList,
    listItem,
    definitionList,
    definitionTerm,
    definition,
    table,
    tableCaption,
    tableSection,
    tableRow,
    tableCell,
    lineBreak,
    rule,
    document, ///< html and body: their tags may stand anywhere and mean nothing.
    head,
    headContent, ///< Stands in a head and shows nothing.
    rawText,     ///< Holds something that is not HTML, up to its own end tag, and shows nothing.
    hiddenBlock, ///< Never shown, whatever is in it.
    hiddenInline,
    nothing, ///< Has no content and shows nothing.
};

/// The element of a tag's name in lower case.
HTMLElement elementNamed(std::string_view name);

/// The name that stands for all elements of that kind; empty for kinds that are never written.
std::string_view canonicalName(HTMLElement element);

} // namespace Platform
