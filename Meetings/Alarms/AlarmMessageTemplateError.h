#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Meetings {

/// Why the stored template could not be read or replaced. Nothing was changed.
class AlarmMessageTemplateError final : public std::exception {
public:
    enum class Case : std::uint8_t {
        decodingFailed, ///< What is stored is no template.
        encodingFailed, ///< The template's text is not UTF-8.
        notStored,      ///< The settings could not be written.
    };

    AlarmMessageTemplateError(Case errorCase, std::string reason);

    [[nodiscard]] Case code() const { return errorCase; }
    [[nodiscard]] char const* what() const noexcept override { return text.c_str(); }

    friend bool operator==(AlarmMessageTemplateError const& left, AlarmMessageTemplateError const& right) {
        return left.errorCase == right.errorCase && left.text == right.text;
    }

private:
    Case errorCase;
    std::string text;
};

} // namespace Meetings
