#include "Applications/Companion/FaceText.h"

#include "Foundation/Text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <variant>

namespace Companion {

namespace {

namespace Text = Foundation::Text;

constexpr std::size_t gap = 2;             // Blanks between two columns.
constexpr std::size_t barColumns = 2;      // The bar and the blank after it.
constexpr std::size_t shortestName = 8;    // A narrower terminal wraps rather than lose the name.
constexpr std::size_t widestTerminal = 72; // Durations further away than this are hard to follow.
constexpr std::size_t widestPipe = 100;    // So that one long name does not push all durations away.

// Columns that a line may take.
std::size_t lineWidth(FaceTextStyle const& style) {
    return style.columns ? std::min(*style.columns, widestTerminal) : widestPipe;
}

std::string padding(std::size_t columns) {
    return std::string(columns, ' ');
}

std::string padded(std::string const& text, std::size_t columns) {
    auto const width = Text::terminalWidth(text);
    return width < columns ? text + padding(columns - width) : text;
}

// `name` made harmless, and short enough to be measured: it may be as long as a calendar's file.
std::string shownName(std::string const& name) {
    return Text::truncated(Text::neutralized(name), widestPipe);
}

int channel(double value) {
    return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

// Widths of the columns that cards share.
struct Columns {
    std::size_t time = 0;
    std::size_t name = 0;
    std::size_t duration = 0;
};

Columns columnsOf(Platform::FaceLayout const& layout, std::size_t width) {
    Columns columns;
    for (auto const& row : layout.rows) {
        auto const* card = std::get_if<Platform::CardRow>(&row);
        if (card == nullptr) continue;
        columns.time = std::max(columns.time, Text::terminalWidth(card->time));
        columns.name = std::max(columns.name, Text::terminalWidth(shownName(card->name)));
        columns.duration = std::max(columns.duration, Text::terminalWidth(card->duration.value_or("")));
    }
    auto const taken = barColumns + columns.time + gap + (columns.duration > 0 ? gap + columns.duration : 0);
    auto const room = width > taken ? width - taken : 0;
    columns.name = std::min(columns.name, std::max(room, shortestName));
    return columns;
}

class FaceTextWriter {
public:
    FaceTextWriter(Platform::FaceLayout const& layout, FaceTextStyle const& style)
        : layout(layout),
          style(style),
          columns(columnsOf(layout, lineWidth(style))) {}

    void operator()(Platform::HeaderRow const& row) {
        line(bold(fmt::format("{} {}", Text::neutralized(row.weekday), row.day)));
        line("");
    }

    void operator()(Platform::LabelRow const& row) { line(faint(Text::neutralized(row.text))); }

    void operator()(Platform::BarRow const& row) {
        auto const room = std::max(lineWidth(style), barColumns + shortestName) - barColumns;
        line(bar(row.color) + " " + cutToColumns(shownName(row.name), room));
    }

    void operator()(Platform::SpaceRow const&) { line(""); }

    void operator()(Platform::CardRow const& row) {
        auto const name = cutToColumns(shownName(row.name), columns.name);
        auto text = bar(row.color) + " " + padded(row.time, columns.time) + padding(gap);
        if (row.duration) {
            auto const lead = columns.duration - Text::terminalWidth(*row.duration);
            text += padded(name, columns.name) + padding(gap + lead) + faint(*row.duration);
        } else {
            text += name;
        }
        line(text);
    }

    void operator()(Platform::LineRow const& row) { line(Text::neutralized(row.text)); }

    void operator()(Platform::MoreRow const& row) {
        line(padding(barColumns) + faint(Text::neutralized(row.text)));
    }

    std::string page;

private:
    void line(std::string const& text) { page += text + "\n"; }

    [[nodiscard]] std::string styled(std::string_view code, std::string const& text) const {
        return style.showsColors ? fmt::format("\x1b[{}m{}\x1b[0m", code, text) : text;
    }
    [[nodiscard]] std::string bold(std::string const& text) const { return styled("1", text); }
    [[nodiscard]] std::string faint(std::string const& text) const { return styled("2", text); }

    [[nodiscard]] std::string bar(Platform::FaceColor const& color) const {
        // A terminal does not know the desktop's accent colour; the face's own is the nearest to it.
        auto const* given = std::get_if<Platform::SRGBColor>(&color);
        auto const& shown = given != nullptr ? *given : layout.accent;
        return styled(
            fmt::format("38;2;{};{};{}", channel(shown.red), channel(shown.green), channel(shown.blue)), "▌");
    }

    Platform::FaceLayout const& layout;
    FaceTextStyle const& style;
    Columns columns;
};

} // namespace

std::string cutToColumns(std::string const& text, std::size_t columns) {
    if (Text::terminalWidth(text) <= columns) return text;
    std::string kept;
    std::string_view rest = text;
    while (!rest.empty()) {
        auto const cluster = rest.substr(0, Text::firstGraphemeLength(rest));
        if (Text::terminalWidth(kept) + Text::terminalWidth(cluster) + 1 > columns) break;
        kept += cluster;
        rest.remove_prefix(cluster.size());
    }
    return kept + "…";
}

std::string faceText(Platform::FaceLayout const& layout, FaceTextStyle const& style) {
    FaceTextWriter writer(layout, style);
    for (auto const& row : layout.rows)
        std::visit(writer, row);
    return writer.page;
}

} // namespace Companion
