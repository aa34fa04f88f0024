#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The words of a command line, for both programs; each says in its own texts what is wrong with them.
namespace Options {

/// An option that a program knows.
struct OptionForm {
    std::string names; ///< "--family", or with a letter before it: "-h,--help".
    bool takesValue;

    /// What it is called: its long name.
    [[nodiscard]] std::string_view name() const;
};

/// What is wrong with the words.
struct OptionFault {
    enum class Kind : std::uint8_t { missingValue, unexpectedValue, repeated };
    Kind kind;
    std::string option; ///< Its long name.

    bool operator==(OptionFault const&) const = default;
};

struct OptionWords {
    /// The options that were given, by their long names; a switch with an empty value, a repeated one with
    /// its first.
    std::map<std::string, std::string, std::less<>> values;
    /// The words that are neither options nor their values, in order, with "--" and unknown options.
    std::vector<std::string> others;
    /// The first thing that is wrong. What else was read stands, so that a question for help is answered.
    std::optional<OptionFault> fault;

    [[nodiscard]] bool has(std::string_view name) const { return values.contains(name); }
    [[nodiscard]] std::optional<std::string> value(std::string_view name) const;
};

/// Reads the words after a program's or command's name: "--family small" as well as "--family=small". After
/// "--" no word is an option; where a value has to stand it is none, though "--title=--" gives it.
OptionWords readOptionWords(std::span<OptionForm const> forms, std::vector<std::string> words);

} // namespace Options
