#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// The lines of one component, to be changed property by property. What is not touched comes out byte for
/// byte as it went in: other properties, components inside, folds, line breaks, the case of letters.
class ComponentText {
public:
    /// `bytes` from BEGIN to END, as in the file.
    explicit ComponentText(std::string_view bytes);

    /// One of the component's own properties, unfolded.
    struct Property {
        std::size_t line; ///< Names it to `replace`; good until a line is added or removed.
        std::string parameters;
        std::string value;
    };

    /// The component's own properties of that name, given in upper case, in their order.
    [[nodiscard]] std::vector<Property> properties(std::string_view name) const;
    [[nodiscard]] std::optional<Property> first(std::string_view name) const;

    /// All that it says but for its own properties of those names, given in upper case: its other properties
    /// in alphabetical order, then the components inside; unfolded, without breaks.
    [[nodiscard]] std::vector<std::string> contentApartFrom(std::span<std::string_view const> names) const;

    /// Gives a property other parameters and another value; its name stays as it was written.
    void replace(std::size_t line, std::string_view parameters, std::string_view value);

    /// Gives the first property of that name another value, or adds one without parameters.
    void set(std::string_view name, std::string_view value);

    /// Adds a property after the others, before the components inside.
    void add(std::string_view name, std::string_view parameters, std::string_view value);

    /// Removes all properties of that name.
    void remove(std::string_view name);
    void removeLine(std::size_t line);

    /// The break that the component's first line has.
    [[nodiscard]] std::string const& lineBreak() const { return breakText; }

    [[nodiscard]] std::string text() const;

private:
    struct Line {
        std::string raw;       // With its break; or the empty lines between two others.
        std::string name = {}; // As written, unfolded; empty for what is not the component's own property.
        bool isDelimiter = false;
    };
    [[nodiscard]] std::size_t placeForNew() const;

    std::vector<Line> lines;
    std::string breakText;
};

/// `parameters` with `name` set to `value`, or without it when there is none. The others stay as they are.
std::string withParameter(std::string_view parameters, std::string_view name,
                          std::optional<std::string_view> value);

} // namespace Platform::ICalendar
