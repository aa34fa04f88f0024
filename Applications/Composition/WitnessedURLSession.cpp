#include "Applications/Composition/WitnessedURLSession.h"

#include <utility>

namespace Composition {
namespace {

using Platform::URLError;

// Whether the server has surely not done what it was asked for.
bool isRefusal(std::optional<std::int64_t> status) {
    bool const isSuccess = status && *status >= 200 && *status <= 299;
    bool const isBreakdown = status && *status >= 500;
    return !isSuccess && !isBreakdown;
}

// Whether a server can have received a request that ended so.
bool canHaveArrived(URLError::Case errorCase) {
    switch (errorCase) {
    case URLError::Case::badURL:
    case URLError::Case::unsupportedURL:
    case URLError::Case::badRequestHeader:
    case URLError::Case::cannotFindHost:
    case URLError::Case::cannotConnectToHost:
    case URLError::Case::secureConnectionFailed: return false;
    case URLError::Case::cancelled:
    case URLError::Case::timedOut:
    case URLError::Case::networkConnectionLost:
    case URLError::Case::cannotDecodeContent:
    case URLError::Case::dataLengthExceedsMaximum:
    case URLError::Case::badServerResponse:
    case URLError::Case::unknown: return true;
    }
    return true;
}

} // namespace

WitnessedURLSession::WitnessedURLSession(std::shared_ptr<Platform::URLSession> session)
    : session(std::move(session)) {}

Foundation::Task<Platform::URLResponse> WitnessedURLSession::data(Platform::URLRequest request) {
    bool const isChange = request.httpMethod != "GET";
    status = std::nullopt;
    mayHaveChanged = isChange;
    try {
        Platform::URLResponse response = co_await session->data(std::move(request));
        status = response.statusCode;
        mayHaveChanged = isChange && !isRefusal(status);
        co_return response;
    } catch (URLError const& error) {
        mayHaveChanged = isChange && canHaveArrived(error.errorCase());
        throw;
    }
}

} // namespace Composition
