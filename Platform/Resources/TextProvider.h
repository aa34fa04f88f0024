#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// Looks up the texts of one bundle in the user's languages.
class TextProvider {
public:
    virtual ~TextProvider() = default;

    /// The text of `key` in the first of the user's languages that has it, else in English, else the key
    /// itself. Placeholders stay as they are.
    [[nodiscard]] virtual std::string text(std::string_view key) const = 0;
};

} // namespace Platform
