#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Platform::ICalendar {

/// A RECUR value (RFC 5545 §3.3.10) as its parts, to be changed one by one. Parts that nobody asks for, such
/// as other programs' own, stay as they were written.
class RuleText {
public:
    explicit RuleText(std::string_view text);

    /// Replaces the part of that name, given in upper case, or adds it at the end.
    void set(std::string_view name, std::string value);

    void remove(std::string_view name);

    /// The value of the part of that name.
    [[nodiscard]] std::optional<std::string> value(std::string_view name) const;

    [[nodiscard]] std::string text() const;

    friend bool operator==(RuleText const&, RuleText const&) = default;

private:
    std::vector<std::pair<std::string, std::string>> parts; // As written, but for blanks around them.
};

/// "SU" … "SA" for 0 … 6.
std::string_view weekdayName(int weekday);

} // namespace Platform::ICalendar
