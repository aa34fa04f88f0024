#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Platform::ICalendar {

/// Without blanks, tabs and line breaks at both ends.
std::string_view trimmed(std::string_view text);

/// `raw` without its folds and without stray CRs.
std::string unfold(std::string_view raw);

/// Whether both are equal but for the case of ASCII letters. `upper` is given in upper case.
bool equalsIgnoringCase(std::string_view text, std::string_view upper);

/// The content lines of an iCalendar stream (RFC 5545 §3.1), one after another, without copying any.
class ContentLineScanner {
public:
    explicit ContentLineScanner(std::string_view bytes);

    /// Moves to the next line that is not empty; false at the end.
    bool next();

    /// The present line without its final break; folds still stand in it.
    [[nodiscard]] std::string_view line() const { return current; }
    [[nodiscard]] bool isFolded() const { return folded; }

    /// Of the line's first physical line, from 1.
    [[nodiscard]] std::int64_t lineNumber() const { return currentNumber; }

    /// Of the line's first byte, and of the first byte after its break.
    [[nodiscard]] std::size_t offset() const { return currentOffset; }
    [[nodiscard]] std::size_t endOffset() const { return position; }

private:
    std::string_view bytes;
    std::size_t position = 0;
    std::int64_t nextNumber = 1;
    std::string_view current;
    bool folded = false;
    std::int64_t currentNumber = 0;
    std::size_t currentOffset = 0;
};

/// A content line cut at the colon that ends its name and parameters.
struct ContentLine {
    std::string_view name;       ///< As written; with a fold inside when the line is folded there.
    std::string_view parameters; ///< From the first ";" to the colon; empty without any.
    std::string_view value;      ///< After the colon.
};

/// Quoted parameter values may hold ";" and ":". False for a line without a colon.
bool splitContentLine(std::string_view line, ContentLine& result);

/// Walks over `;NAME=value` pairs. Quotes are removed, the escapes of RFC 6868 are not decoded.
class ParameterScanner {
public:
    explicit ParameterScanner(std::string_view parameters);

    /// Moves to the next parameter; false at the end.
    bool next();

    [[nodiscard]] std::string_view name() const { return currentName; }
    [[nodiscard]] std::string_view value() const { return currentValue; }

private:
    std::string_view rest;
    std::string_view currentName;
    std::string_view currentValue;
};

/// A parameter's value with `^n`, `^'` and `^^` decoded (RFC 6868).
std::string decodedParameter(std::string_view value);

} // namespace Platform::ICalendar
