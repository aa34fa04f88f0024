#pragma once

#include <cstdint>
#include <exception>

namespace Meetings {

/// Why a template breaks the rules.
class AlarmMessageDomainError final : public std::exception {
public:
    enum class Case : std::uint8_t {
        missingEventPlaceholder, ///< It does not say where the meet's name belongs.
    };

    explicit AlarmMessageDomainError(Case errorCase) : errorCase(errorCase) {}

    [[nodiscard]] Case code() const { return errorCase; }
    [[nodiscard]] char const* what() const noexcept override;

    friend bool operator==(AlarmMessageDomainError const& left, AlarmMessageDomainError const& right) {
        return left.errorCase == right.errorCase;
    }

private:
    Case errorCase;
};

} // namespace Meetings
