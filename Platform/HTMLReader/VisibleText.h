#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// Gathers the text of a scrubbed document from its events. Blocks, rows, list items and rules begin on a
/// line of their own, `br` ends one; blanks collapse outside `pre`; list items bear their bullet or number.
class VisibleText {
public:
    /// `name` is a canonical one. `number` is where a list starts, or an item's own number.
    void startElement(std::string_view name, bool isHidden, std::optional<std::int32_t> number);
    void endElement(std::string_view name);
    void characters(std::string_view text);

    /// What was gathered so far.
    [[nodiscard]] std::string const& text() const { return output; }

private:
    struct List {
        bool isOrdered;
        std::int64_t next;
    };

    void startListItem(std::optional<std::int32_t> number);
    void writePreformatted(std::string_view text);
    void writeCollapsed(std::string_view text);
    void writeWord(std::string_view word);
    void writeLineBreak();
    void beginWriting();
    void breakLine() { hasPendingBreak = true; }

    std::string output;
    std::vector<List> lists;
    std::string pendingMarker; ///< Of a list item that has shown nothing yet.
    std::size_t hiddenDepth = 0;
    std::size_t preformattedDepth = 0;
    bool isAtPreformattedStart = false;
    bool isLineEmpty = true;
    bool hasPendingBreak = false;
    bool hasPendingBlank = false;
};

} // namespace Platform
