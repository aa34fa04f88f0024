#pragma once

#include <exception>
#include <string>

namespace Meetings {

/// A request to the backend failed; the message is the text for the person.
class RemoteEventRepositoryError final : public std::exception {
public:
    static RemoteEventRepositoryError endpointFailed(std::string message) {
        return RemoteEventRepositoryError(std::move(message));
    }

    [[nodiscard]] std::string const& message() const { return text; }
    [[nodiscard]] char const* what() const noexcept override { return text.c_str(); }

    friend bool operator==(RemoteEventRepositoryError const& left, RemoteEventRepositoryError const& right) {
        return left.text == right.text;
    }

private:
    explicit RemoteEventRepositoryError(std::string message) : text(std::move(message)) {}

    std::string text;
};

} // namespace Meetings
