#pragma once

#include "Foundation/JSON.h"
#include "Foundation/Task.h"
#include "Foundation/URL.h"
#include "Foundation/URLBuilding.h"
#include "Networking/APIError.h"
#include "Networking/AuthTokenProvider.h"
#include "Networking/NetworkLogger.h"
#include "Platform/URLSession/URLSession.h"

#include <concepts>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Networking {

/// A record that can be read from JSON.
template <typename Record>
concept JSONDecodable = requires(Foundation::JSON::Value const& value) {
    { Record::decode(value) } -> std::same_as<std::expected<Record, Foundation::JSON::DecodeFailure>>;
};

/// A record that can be written as JSON.
template <typename Record>
concept JSONEncodable = requires(Record const& record) {
    { record.encode() } -> std::same_as<Foundation::JSON::Value>;
};

template <typename T>
using APIResult = std::expected<T, APIError>;

/// The backend's JSON client. It sends one request a call, with a bearer token that it asks for each time
/// and waits 15 seconds for at most, logs the exchange and never throws. A value; copies share the parts
/// that it was given, which must not change.
class APIClient final {
public:
    static constexpr double tokenTimeout = 15.0; ///< Seconds.

    APIClient(Foundation::URL const& baseURL, std::shared_ptr<AuthTokenProvider> tokenProvider,
              std::shared_ptr<Platform::URLSession> session, bool enableLogging,
              NetworkLoggerServices loggerServices);

    template <JSONDecodable Record>
    Foundation::Task<APIResult<Record>> get(std::string path,
                                            std::vector<Foundation::URLQueryItem> query) const;

    /// A JSON array of records; one that does not decode fails the whole.
    template <JSONDecodable Record>
    Foundation::Task<APIResult<std::vector<Record>>>
    getList(std::string path, std::vector<Foundation::URLQueryItem> query) const;

    template <JSONDecodable Record, JSONEncodable Body>
    Foundation::Task<APIResult<Record>> post(std::string path, Body body) const;

    template <JSONDecodable Record, JSONEncodable Body>
    Foundation::Task<APIResult<Record>> put(std::string path, Body body) const;

    /// Sends no body, on purpose: a changed record goes by `put` or `post`.
    template <JSONDecodable Record>
    Foundation::Task<APIResult<Record>> patch(std::string path) const;

    Foundation::Task<APIResult<void>> remove(std::string path) const;

    template <JSONEncodable Body>
    Foundation::Task<APIResult<void>> remove(std::string path, Body body) const;

private:
    using Query = std::vector<Foundation::URLQueryItem>;

    // The body arrives as a value, not as bytes: it is encoded after the token is there.
    Foundation::Task<APIResult<std::string>> send(std::string path, std::string method, Query query,
                                                  std::optional<Foundation::JSON::Value> body) const;
    Foundation::Task<APIResult<void>> sendIgnoringContent(std::string path, std::string method,
                                                          std::optional<Foundation::JSON::Value> body) const;

    template <JSONDecodable Record>
    static APIResult<Record> decodeResult(APIResult<std::string> const& data);

    template <JSONDecodable Record>
    static APIResult<std::vector<Record>> decodeListResult(APIResult<std::string> const& data);

    static APIResult<Foundation::JSON::Value> parsed(APIResult<std::string> const& data);
    static APIError decodingError(Foundation::JSON::DecodeFailure failure);

    std::optional<Foundation::BaseURL> baseURL; ///< Absent for what is no link: every request says so.
    std::shared_ptr<AuthTokenProvider> tokenProvider;
    std::shared_ptr<Platform::URLSession> session;
    NetworkLogger logger;
};

template <JSONDecodable Record>
Foundation::Task<APIResult<Record>> APIClient::get(std::string path, Query query) const {
    APIResult<std::string> const data = co_await send(std::move(path), "GET", std::move(query), std::nullopt);
    co_return decodeResult<Record>(data);
}

template <JSONDecodable Record>
Foundation::Task<APIResult<std::vector<Record>>> APIClient::getList(std::string path, Query query) const {
    APIResult<std::string> const data = co_await send(std::move(path), "GET", std::move(query), std::nullopt);
    co_return decodeListResult<Record>(data);
}

template <JSONDecodable Record, JSONEncodable Body>
Foundation::Task<APIResult<Record>> APIClient::post(std::string path, Body body) const {
    std::optional<Foundation::JSON::Value> content = body.encode();
    Query noQuery;
    APIResult<std::string> const data =
        co_await send(std::move(path), "POST", std::move(noQuery), std::move(content));
    co_return decodeResult<Record>(data);
}

template <JSONDecodable Record, JSONEncodable Body>
Foundation::Task<APIResult<Record>> APIClient::put(std::string path, Body body) const {
    std::optional<Foundation::JSON::Value> content = body.encode();
    Query noQuery;
    APIResult<std::string> const data =
        co_await send(std::move(path), "PUT", std::move(noQuery), std::move(content));
    co_return decodeResult<Record>(data);
}

template <JSONDecodable Record>
Foundation::Task<APIResult<Record>> APIClient::patch(std::string path) const {
    Query noQuery;
    APIResult<std::string> const data =
        co_await send(std::move(path), "PATCH", std::move(noQuery), std::nullopt);
    co_return decodeResult<Record>(data);
}

template <JSONEncodable Body>
Foundation::Task<APIResult<void>> APIClient::remove(std::string path, Body body) const {
    std::optional<Foundation::JSON::Value> content = body.encode();
    APIResult<void> const result =
        co_await sendIgnoringContent(std::move(path), "DELETE", std::move(content));
    co_return result;
}

template <JSONDecodable Record>
APIResult<Record> APIClient::decodeResult(APIResult<std::string> const& data) {
    auto const value = parsed(data);
    if (!value) return std::unexpected(value.error());
    auto record = Record::decode(*value);
    if (!record) return std::unexpected(decodingError(record.error()));
    return std::move(*record);
}

template <JSONDecodable Record>
APIResult<std::vector<Record>> APIClient::decodeListResult(APIResult<std::string> const& data) {
    if (!data) return std::unexpected(data.error());
    std::vector<Record> records;
    std::optional<Foundation::JSON::DecodeFailure> failure;
    // What is no JSON as a whole is told before what is no record.
    auto const read = Foundation::JSON::parseElements(*data, Foundation::JSON::mostForeignValues,
                                                      [&](Foundation::JSON::Value const& element) {
                                                          if (failure) return;
                                                          auto record = Record::decode(element);
                                                          if (record) {
                                                              records.push_back(std::move(*record));
                                                          } else {
                                                              failure = record.error();
                                                          }
                                                      });
    if (!read) return std::unexpected(decodingError(read.error()));
    if (failure) return std::unexpected(decodingError(*failure));
    return records;
}

} // namespace Networking
