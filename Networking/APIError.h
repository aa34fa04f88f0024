#pragma once

#include <cstdint>
#include <string>

namespace Networking {

/// Why a request to the backend gave no value.
class APIError final {
public:
    enum class Case : std::uint8_t {
        forbidden,    ///< 403; `message` is the response's text.
        badRequest,   ///< 400 with the response's text, or a request that could not be built.
        server,       ///< Any other status outside 200…299; `statusCode` bears it.
        transport,    ///< No response; `message` says why.
        decoding,     ///< The response does not hold what was asked for.
        unauthorized, ///< 401, or no token was to be had.
        notFound,     ///< 404
    };

    static APIError forbidden(std::string message) { return {Case::forbidden, std::move(message), 0}; }
    static APIError badRequest(std::string message) { return {Case::badRequest, std::move(message), 0}; }
    static APIError server(std::int64_t statusCode) { return {Case::server, {}, statusCode}; }
    static APIError transport(std::string message) { return {Case::transport, std::move(message), 0}; }
    static APIError decoding(std::string message) { return {Case::decoding, std::move(message), 0}; }
    static APIError unauthorized() { return {Case::unauthorized, {}, 0}; }
    static APIError notFound() { return {Case::notFound, {}, 0}; }

    [[nodiscard]] Case errorCase() const { return kind; }

    /// The payload of `forbidden`, `badRequest`, `transport` and `decoding`; otherwise empty.
    [[nodiscard]] std::string const& message() const { return text; }

    /// The payload of `server`; otherwise 0.
    [[nodiscard]] std::int64_t statusCode() const { return code; }

    friend bool operator==(APIError const&, APIError const&) = default;

private:
    APIError(Case errorCase, std::string message, std::int64_t statusCode)
        : kind(errorCase),
          text(std::move(message)),
          code(statusCode) {}

    Case kind;
    std::string text;
    std::int64_t code;
};

} // namespace Networking
