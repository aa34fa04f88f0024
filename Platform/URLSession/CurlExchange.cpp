#include "Platform/URLSession/CurlExchange.h"

#include "Foundation/FatalError.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Platform {
namespace {

// Below the library's own bound, which it reports as a lost connection.
constexpr std::size_t maximumHeaderBytes = std::size_t{256} << 10;

void set(CURL* handle, CURLoption option, auto value) {
    if (curl_easy_setopt(handle, option, value) != CURLE_OK) {
        Foundation::fatalError("libcurl refuses option " + std::to_string(static_cast<int>(option)));
    }
}

} // namespace

CurlOutcome curlFailure(URLError::Case errorCase) {
    return {.error = std::make_exception_ptr(URLError(errorCase)), .response = {}};
}

CurlExchange::CurlExchange(std::uint64_t identifier, URLRequest request, CurlURLSessionLimits limits)
    : identifier(identifier),
      request(std::move(request)),
      limits(limits) {}

void CurlExchange::setUp(CURL* easy, CurlURLSessionLimits const& limits) {
    set(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    // A redirect could carry the bearer token to another host.
    set(easy, CURLOPT_FOLLOWLOCATION, 0L);
    set(easy, CURLOPT_PATH_AS_IS, 1L);
    set(easy, CURLOPT_NOSIGNAL, 1L);
    // A name that is still being looked up must not hold up who cancels.
    set(easy, CURLOPT_QUICK_EXIT, 1L);
    // An empty text means no proxy, whatever the environment says.
    set(easy, CURLOPT_PROXY, "");
    set(easy, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    set(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(easy, CURLOPT_ACCEPT_ENCODING, "");
    set(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(easy, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.timeWithoutData.count()));
    set(easy, CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.timeWithoutData.count()));
    set(easy, CURLOPT_WRITEFUNCTION, &receiveBody);
    set(easy, CURLOPT_HEADERFUNCTION, &receiveHeader);
    set(easy, CURLOPT_USERAGENT, "Quillora");
}

void CurlExchange::prepare(CurlHandle ready) {
    handle = std::move(ready);
    set(handle.get(), CURLOPT_PRIVATE, this);
    set(handle.get(), CURLOPT_WRITEDATA, this);
    set(handle.get(), CURLOPT_HEADERDATA, this);
    set(handle.get(), CURLOPT_URL, request.url.absoluteString.c_str());
    prepareMethod();
    prepareHeaders();
}

void CurlExchange::forgetRequest(CURL* easy) {
    set(easy, CURLOPT_HTTPHEADER, static_cast<curl_slist*>(nullptr));
    set(easy, CURLOPT_POSTFIELDS, static_cast<char*>(nullptr));
    set(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(-1));
    // Last, since it is what undoes the others' choice of a method: no body, none left out.
    set(easy, CURLOPT_HTTPGET, 1L);
}

CurlExchange& CurlExchange::of(CURL* handle) {
    char* context = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &context);
    return *reinterpret_cast<CurlExchange*>(context);
}

CurlOutcome CurlExchange::outcome(CURLcode code) {
    if (code != CURLE_OK) return curlFailure(errorCase(code));
    long status = 0;
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    return {.error = nullptr, .response = {.statusCode = status, .data = std::move(data)}};
}

std::size_t CurlExchange::receiveBody(char* bytes, std::size_t size, std::size_t count, void* context) {
    auto& exchange = *static_cast<CurlExchange*>(context);
    if (exchange.data.size() + size * count > exchange.limits.responseBytes) {
        exchange.isTooLarge = true;
        return 0;
    }
    exchange.makeRoom(size * count);
    exchange.data.append(bytes, size * count);
    return size * count;
}

// Twice as much each time, but never beyond the bound: doubling alone would.
void CurlExchange::makeRoom(std::size_t more) {
    auto const needed = data.size() + more;
    if (needed <= data.capacity()) return;
    data.reserve(std::min(std::max(needed, data.capacity() * 2), limits.responseBytes));
}

std::size_t CurlExchange::receiveHeader(char*, std::size_t size, std::size_t count, void* context) {
    auto& exchange = *static_cast<CurlExchange*>(context);
    exchange.headerBytes += size * count;
    if (exchange.headerBytes > maximumHeaderBytes) {
        exchange.isTooLarge = true;
        return 0;
    }
    return size * count;
}

void CurlExchange::prepareMethod() {
    set(handle.get(), CURLOPT_CUSTOMREQUEST, request.httpMethod.c_str());
    bool const sendsLength = request.httpBody || request.httpMethod == "PATCH";
    if (sendsLength) {
        std::string_view const body = request.httpBody ? std::string_view(*request.httpBody) : "";
        set(handle.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        // The request outlives the transfer, so the bytes are not copied.
        set(handle.get(), CURLOPT_POSTFIELDS, body.data());
    } else if (request.httpMethod == "HEAD") {
        set(handle.get(), CURLOPT_NOBODY, 1L);
    }
}

void CurlExchange::prepareHeaders() {
    curl_slist* list = nullptr;
    for (auto const& [name, value] : request.headers) {
        // An empty value needs the semicolon form, or the header would be dropped.
        std::string const line = value.empty() ? name + ";" : name + ": " + value;
        list = curl_slist_append(list, line.c_str());
    }
    // Waiting for "100 Continue" costs a second with servers that do not know it.
    list = curl_slist_append(list, "Expect:");
    headers.reset(list);
    set(handle.get(), CURLOPT_HTTPHEADER, list);
}

bool CurlExchange::wasSent() const {
    long bytes = 0;
    curl_easy_getinfo(handle.get(), CURLINFO_REQUEST_SIZE, &bytes);
    return bytes > 0;
}

// The library has one code for a scheme that it does not speak and for an answer that is not HTTP.
URLError::Case CurlExchange::errorCase(CURLcode code) const {
    using enum URLError::Case;
    if (isTooLarge) return dataLengthExceedsMaximum;
    switch (code) {
    case CURLE_URL_MALFORMAT: return badURL;
    case CURLE_UNSUPPORTED_PROTOCOL: return wasSent() ? badServerResponse : unsupportedURL;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY: return cannotFindHost;
    case CURLE_COULDNT_CONNECT: return cannotConnectToHost;
    case CURLE_OPERATION_TIMEDOUT: return timedOut;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM: return networkConnectionLost;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ISSUER_ERROR: return secureConnectionFailed;
    case CURLE_BAD_CONTENT_ENCODING: return cannotDecodeContent;
    case CURLE_FILESIZE_EXCEEDED: return dataLengthExceedsMaximum;
    case CURLE_WEIRD_SERVER_REPLY: return badServerResponse;
    default: return unknown;
    }
}

} // namespace Platform
