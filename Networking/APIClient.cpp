#include "Networking/APIClient.h"

#include "Foundation/Text.h"
#include "Networking/Timeout.h"
#include "Networking/TokenRedaction.h"

namespace Networking {
namespace {

namespace JSON = Foundation::JSON;

constexpr std::string_view invalidURL = "URL inválida";
constexpr std::string_view encodingFailed = "no se pudo codificar la solicitud";
constexpr std::string_view authTimeout = "tiempo de espera agotado al autenticar";
constexpr std::string_view invalidResponse = "respuesta inválida";

std::string textOr(std::string_view otherwise, std::string const& data) {
    return Foundation::Text::isValidUTF8(data) ? data : std::string(otherwise);
}

APIError mapErrorStatus(std::int64_t status, std::string const& data, std::string const& token) {
    // A server that repeats the request would have the token shown.
    std::string const body = withoutToken(textOr("", data), token);
    if (status == 401) return APIError::unauthorized();
    if (status == 403) return APIError::forbidden(body);
    if (status == 404) return APIError::notFound();
    if (status == 400) return APIError::badRequest(body);
    return APIError::server(status);
}

// What the wait for the token came to.
struct TokenOutcome {
    std::optional<std::string> token;
    bool isTimeout = false;
};

Foundation::Task<TokenOutcome> tokenWithin(double seconds, std::shared_ptr<AuthTokenProvider> provider) {
    TokenOutcome outcome;
    try {
        std::function<Foundation::Task<std::string>()> operation = [provider] { return provider->token(); };
        std::string token = co_await withTimeout<std::string>(seconds, std::move(operation));
        outcome.token = std::move(token);
    } catch (TimeoutError const&) {
        outcome.isTimeout = true;
    } catch (...) {
        // Whatever else a provider fails with counts as a refusal.
        outcome.token = std::nullopt;
    }
    co_return outcome;
}

// The session's answer, or the text of its failure.
struct ExchangeOutcome {
    Platform::URLResponse response;
    std::optional<std::string> failure;
};

Foundation::Task<ExchangeOutcome> exchange(std::shared_ptr<Platform::URLSession> session,
                                           Platform::URLRequest request) {
    ExchangeOutcome outcome;
    try {
        Platform::URLResponse response = co_await session->data(std::move(request));
        outcome.response = std::move(response);
    } catch (std::exception const& error) {
        outcome.failure = error.what();
    }
    co_return outcome;
}

} // namespace

APIClient::APIClient(Foundation::URL const& baseURL, std::shared_ptr<AuthTokenProvider> tokenProvider,
                     std::shared_ptr<Platform::URLSession> session, bool enableLogging,
                     NetworkLoggerServices loggerServices)
    : baseURL(Foundation::BaseURL::of(baseURL)),
      tokenProvider(std::move(tokenProvider)),
      session(std::move(session)),
      logger(enableLogging, std::move(loggerServices)) {}

Foundation::Task<APIResult<std::string>> APIClient::send(std::string path, std::string method, Query query,
                                                         std::optional<JSON::Value> body) const {
    if (!baseURL) co_return std::unexpected(APIError::badRequest(std::string(invalidURL)));

    Platform::URLRequest request{.url = baseURL->appending(path, query), .httpMethod = method};
    request.setValue("application/json", "Content-Type");
    std::string const endpoint = method + " " + request.url.absoluteString;

    TokenOutcome const authorisation = co_await tokenWithin(tokenTimeout, tokenProvider);
    if (authorisation.isTimeout) {
        // The body is not there yet, so the record shows "-" for a POST as well, on purpose.
        logger.log(endpoint, request, "auth timeout");
        co_return std::unexpected(APIError::transport(std::string(authTimeout)));
    }
    if (!authorisation.token) co_return std::unexpected(APIError::unauthorized());
    request.setValue("Bearer " + *authorisation.token, "Authorization");

    if (body) {
        auto encoded = JSON::serialize(*body);
        if (!encoded) co_return std::unexpected(APIError::badRequest(std::string(encodingFailed)));
        request.httpBody = std::move(*encoded);
    }

    ExchangeOutcome outcome = co_await exchange(session, request);
    if (outcome.failure) {
        logger.log(endpoint, request, "transport error: " + *outcome.failure);
        co_return std::unexpected(APIError::transport(*outcome.failure));
    }
    auto& [status, data] = outcome.response;
    if (!status) {
        logger.log(endpoint, request, "invalid response");
        co_return std::unexpected(APIError::transport(std::string(invalidResponse)));
    }
    // A response may be large: its text is made only for a log that is written.
    if (logger.isEnabled()) logger.log(endpoint, request, std::to_string(*status) + " " + textOr("-", data));
    bool const isSuccess = *status >= 200 && *status <= 299;
    if (!isSuccess) co_return std::unexpected(mapErrorStatus(*status, data, *authorisation.token));
    co_return std::move(data);
}

Foundation::Task<APIResult<void>> APIClient::sendIgnoringContent(std::string path, std::string method,
                                                                 std::optional<JSON::Value> body) const {
    Query noQuery;
    APIResult<std::string> const data =
        co_await send(std::move(path), std::move(method), std::move(noQuery), std::move(body));
    if (!data) co_return std::unexpected(data.error());
    co_return APIResult<void>{};
}

Foundation::Task<APIResult<void>> APIClient::remove(std::string path) const {
    APIResult<void> const result = co_await sendIgnoringContent(std::move(path), "DELETE", std::nullopt);
    co_return result;
}

APIResult<JSON::Value> APIClient::parsed(APIResult<std::string> const& data) {
    if (!data) return std::unexpected(data.error());
    auto value = JSON::parse(*data, JSON::mostForeignValues);
    if (!value) return std::unexpected(decodingError(value.error()));
    return std::move(*value);
}

APIError APIClient::decodingError(JSON::DecodeFailure failure) {
    return APIError::decoding(std::string(JSON::description(failure)));
}

} // namespace Networking
