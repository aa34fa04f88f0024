#pragma once

#include "Foundation/Task.h"
#include "Foundation/URL.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Platform {

/// A request as it is being built.
struct URLRequest {
    Foundation::URL url;
    std::string httpMethod = "GET";
    std::vector<std::pair<std::string, std::string>> headers = {};
    std::optional<std::string> httpBody = std::nullopt; ///< Absent is no body, not an empty one.

    /// Sets a header; one of that name (in any letter case) is replaced.
    void setValue(std::string value, std::string_view header);

    /// The header of that name, in any letter case; absent when it was not set.
    [[nodiscard]] std::optional<std::string> value(std::string_view header) const;
};

/// What came back.
struct URLResponse {
    std::optional<std::int64_t> statusCode; ///< Absent when the response is not one of HTTP.
    std::string data;
};

/// Why an exchange gave no response. Its text is fixed English, one for each kind.
class URLError final : public std::runtime_error {
public:
    enum class Case : std::uint8_t {
        cancelled,
        badURL,
        unsupportedURL,
        badRequestHeader,
        cannotFindHost,
        cannotConnectToHost,
        timedOut,
        networkConnectionLost,
        secureConnectionFailed,
        cannotDecodeContent,
        dataLengthExceedsMaximum,
        badServerResponse,
        unknown,
    };

    explicit URLError(Case errorCase);

    [[nodiscard]] Case errorCase() const { return kind; }

private:
    Case kind;
};

/// Performs HTTP exchanges. May be used from any task.
class URLSession {
public:
    virtual ~URLSession() = default;

    /// The whole response of one exchange. No redirect is followed and nothing is cached. Throws URLError,
    /// also `cancelled` when the awaiting task is cancelled.
    virtual Foundation::Task<URLResponse> data(URLRequest request) = 0;
};

} // namespace Platform
