#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Meetings {

/// What went wrong in the calendar store.
class EventKitMeetRepositoryError final : public std::exception {
public:
    enum class Case : std::uint8_t {
        saveFailed,    ///< The store refused, or there is no calendar for a new meet.
        accessDenied,  ///< The person has not granted full access to events.
        eventNotFound, ///< The event behind a meet is gone.
    };

    /// With the text that tells why.
    static EventKitMeetRepositoryError saveFailed(std::string message);
    static EventKitMeetRepositoryError accessDenied();
    static EventKitMeetRepositoryError eventNotFound();

    [[nodiscard]] Case code() const { return errorCase; }

    /// The text given to `saveFailed`; empty in the other cases.
    [[nodiscard]] std::string const& message() const { return text; }

    /// The message, or what the case means and what the person can do.
    [[nodiscard]] char const* what() const noexcept override;

    friend bool operator==(EventKitMeetRepositoryError const& left,
                           EventKitMeetRepositoryError const& right) {
        return left.errorCase == right.errorCase && left.text == right.text;
    }

private:
    EventKitMeetRepositoryError(Case errorCase, std::string text);

    Case errorCase;
    std::string text;
};

} // namespace Meetings
