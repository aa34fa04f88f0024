#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>

namespace Meetings {

/// Why a meet breaks the rules.
class MeetValidationError final : public std::exception {
public:
    enum class Case : std::uint8_t { invalidTitle, invalidTimeRange };

    explicit MeetValidationError(Case errorCase) : errorCase(errorCase) {}

    [[nodiscard]] Case code() const { return errorCase; }
    [[nodiscard]] char const* what() const noexcept override;

    friend bool operator==(MeetValidationError const& left, MeetValidationError const& right) {
        return left.errorCase == right.errorCase;
    }

private:
    Case errorCase;
};

} // namespace Meetings

template <>
struct std::hash<Meetings::MeetValidationError> {
    std::size_t operator()(Meetings::MeetValidationError const& error) const noexcept {
        return std::hash<Meetings::MeetValidationError::Case>{}(error.code());
    }
};
