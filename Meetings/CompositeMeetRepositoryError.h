#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>

namespace Meetings {

/// Why a composite of repositories could not write.
class CompositeMeetRepositoryError final : public std::exception {
public:
    enum class Case : std::uint8_t { noRepositoryAvailable };

    explicit CompositeMeetRepositoryError(Case errorCase) : errorCase(errorCase) {}

    [[nodiscard]] Case code() const { return errorCase; }
    [[nodiscard]] char const* what() const noexcept override;

    friend bool operator==(CompositeMeetRepositoryError const& left,
                           CompositeMeetRepositoryError const& right) {
        return left.errorCase == right.errorCase;
    }

private:
    Case errorCase;
};

} // namespace Meetings

template <>
struct std::hash<Meetings::CompositeMeetRepositoryError> {
    std::size_t operator()(Meetings::CompositeMeetRepositoryError const& error) const noexcept {
        return std::hash<Meetings::CompositeMeetRepositoryError::Case>{}(error.code());
    }
};
