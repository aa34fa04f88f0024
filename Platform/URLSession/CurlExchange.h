#pragma once

#include "Platform/URLSession/CurlURLSession.h"

#include <curl/curl.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>

namespace Platform {

/// What came of an exchange: the error, or the response.
struct CurlOutcome {
    std::exception_ptr error;
    URLResponse response;
};

CurlOutcome curlFailure(URLError::Case errorCase);

/// Whether a task is taken up again within the call, or later by its own loop.
enum class Resumption : std::uint8_t { now, later };

/// Hands the outcome to the task that awaits it.
using CurlCompletion = std::move_only_function<void(CurlOutcome, Resumption)>;

struct CurlHandleDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using CurlHandle = std::unique_ptr<CURL, CurlHandleDeleter>;

/// One request on its way, with what has come back so far. It stays where it is while it runs: the library
/// keeps its address.
class CurlExchange final {
public:
    CurlExchange(std::uint64_t identifier, URLRequest request, CurlURLSessionLimits limits);

    CurlExchange(CurlExchange const&) = delete;
    CurlExchange& operator=(CurlExchange const&) = delete;

    /// Sets a new handle up for any request.
    static void setUp(CURL* handle, CurlURLSessionLimits const& limits);

    /// Gives the handle, which is set up and bears no request, this one.
    void prepare(CurlHandle handle);

    /// Takes the request off a handle again: it points into an exchange that goes now.
    static void forgetRequest(CURL* handle);

    /// The exchange that a handle was prepared for.
    static CurlExchange& of(CURL* handle);

    /// What a finished transfer amounts to. Takes what was received along.
    [[nodiscard]] CurlOutcome outcome(CURLcode code);

    std::uint64_t const identifier;
    CurlCompletion completion; ///< Empty until a task awaits it.
    CurlHandle handle;

private:
    struct HeaderListDeleter {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static std::size_t receiveBody(char* bytes, std::size_t size, std::size_t count, void* context);
    static std::size_t receiveHeader(char* bytes, std::size_t size, std::size_t count, void* context);

    void makeRoom(std::size_t more);
    void prepareHeaders();
    void prepareMethod();
    [[nodiscard]] bool wasSent() const;
    [[nodiscard]] URLError::Case errorCase(CURLcode code) const;

    URLRequest request;
    CurlURLSessionLimits limits;
    std::unique_ptr<curl_slist, HeaderListDeleter> headers;
    std::string data;
    std::size_t headerBytes = 0;
    bool isTooLarge = false;
};

} // namespace Platform
