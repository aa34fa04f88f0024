#include "Platform/URLSession/CurlURLSession.h"

#include "Foundation/FatalError.h"

#include <boost/asio/associated_cancellation_slot.hpp>
#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <curl/curl.h>

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace Platform {
namespace {

// Below the library's own bound, which it reports as a lost connection.
constexpr std::size_t maximumHeaderBytes = std::size_t{256} << 10;

constexpr std::size_t maximumIdleHandles = 8;

struct Outcome {
    std::exception_ptr error;
    URLResponse response;
};
using Completion = std::function<void(Outcome)>;

struct EasyHandleDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using EasyHandle = std::unique_ptr<CURL, EasyHandleDeleter>;
struct HeaderListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

// One running exchange; it lives on the worker's thread once it is submitted.
struct Exchange {
    URLRequest request;
    Completion completion;
    std::size_t limit;
    EasyHandle handle = nullptr;
    std::unique_ptr<curl_slist, HeaderListDeleter> headers = nullptr;
    std::string data = {};
    std::size_t headerBytes = 0;
    bool isTooLarge = false;
};

Outcome failure(URLError::Case errorCase) {
    return {.error = std::make_exception_ptr(URLError(errorCase)), .response = {}};
}

// Runs before any other thread touches the library; it is never torn down, because other users of libcurl
// in the process may live longer.
void initialiseLibrary() {
    static CURLcode const result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK) Foundation::fatalError("libcurl cannot be initialised");
}

std::size_t receiveBody(char* bytes, std::size_t size, std::size_t count, void* context) {
    auto& exchange = *static_cast<Exchange*>(context);
    if (exchange.data.size() + size * count > exchange.limit) {
        exchange.isTooLarge = true;
        return 0;
    }
    exchange.data.append(bytes, size * count);
    return size * count;
}

std::size_t receiveHeader(char*, std::size_t size, std::size_t count, void* context) {
    auto& exchange = *static_cast<Exchange*>(context);
    exchange.headerBytes += size * count;
    if (exchange.headerBytes > maximumHeaderBytes) {
        exchange.isTooLarge = true;
        return 0;
    }
    return size * count;
}

bool isSafeHeaderText(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

URLError::Case errorCase(CURLcode code, Exchange const& exchange) {
    using enum URLError::Case;
    if (exchange.isTooLarge) return dataLengthExceedsMaximum;
    switch (code) {
    case CURLE_URL_MALFORMAT: return badURL;
    case CURLE_UNSUPPORTED_PROTOCOL: return unsupportedURL;
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

void set(CURL* handle, CURLoption option, auto value) {
    if (curl_easy_setopt(handle, option, value) != CURLE_OK) {
        Foundation::fatalError("libcurl refuses option " + std::to_string(static_cast<int>(option)));
    }
}

std::unique_ptr<curl_slist, HeaderListDeleter> headerList(URLRequest const& request) {
    curl_slist* list = nullptr;
    for (auto const& [name, value] : request.headers) {
        // An empty value needs the semicolon form, or the header would be dropped.
        std::string const line = value.empty() ? name + ";" : name + ": " + value;
        list = curl_slist_append(list, line.c_str());
    }
    // Waiting for "100 Continue" costs a second with servers that do not know it.
    list = curl_slist_append(list, "Expect:");
    return std::unique_ptr<curl_slist, HeaderListDeleter>(list);
}

void prepareBody(CURL* handle, URLRequest const& request) {
    set(handle, CURLOPT_CUSTOMREQUEST, request.httpMethod.c_str());
    bool const sendsLength = request.httpBody || request.httpMethod == "PATCH";
    if (sendsLength) {
        std::string_view const body = request.httpBody ? std::string_view(*request.httpBody) : "";
        set(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        // The request outlives the exchange, so the bytes are not copied.
        set(handle, CURLOPT_POSTFIELDS, body.data());
    } else if (request.httpMethod == "HEAD") {
        set(handle, CURLOPT_NOBODY, 1L);
    }
}

void prepare(Exchange& exchange, CurlURLSessionLimits const& limits) {
    CURL* const handle = exchange.handle.get();
    exchange.headers = headerList(exchange.request);
    set(handle, CURLOPT_URL, exchange.request.url.absoluteString.c_str());
    prepareBody(handle, exchange.request);
    set(handle, CURLOPT_HTTPHEADER, exchange.headers.get());
    set(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    // A redirect could carry the bearer token to another host.
    set(handle, CURLOPT_FOLLOWLOCATION, 0L);
    set(handle, CURLOPT_PATH_AS_IS, 1L);
    set(handle, CURLOPT_NOSIGNAL, 1L);
    // An empty text means no proxy, whatever the environment says.
    set(handle, CURLOPT_PROXY, "");
    set(handle, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    set(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(handle, CURLOPT_ACCEPT_ENCODING, "");
    set(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(handle, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.timeWithoutData.count()));
    set(handle, CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.timeWithoutData.count()));
    set(handle, CURLOPT_WRITEFUNCTION, &receiveBody);
    set(handle, CURLOPT_WRITEDATA, &exchange);
    set(handle, CURLOPT_HEADERFUNCTION, &receiveHeader);
    set(handle, CURLOPT_HEADERDATA, &exchange);
    set(handle, CURLOPT_USERAGENT, "Quillora");
}

} // namespace

class CurlURLSession::Worker {
public:
    explicit Worker(CurlURLSessionLimits limits) : limits(limits) {
        initialiseLibrary();
        multi = curl_multi_init();
        if (multi == nullptr) Foundation::fatalError("libcurl cannot make a session");
        curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS, limits.connectionsPerHost);
        thread = std::thread([this] { run(); });
    }

    ~Worker() {
        {
            std::lock_guard const guard(mutex);
            isEnding = true;
        }
        curl_multi_wakeup(multi);
        thread.join();
        curl_multi_cleanup(multi);
    }

    Worker(Worker const&) = delete;
    Worker& operator=(Worker const&) = delete;

    std::uint64_t submit(URLRequest request, Completion completion) {
        auto exchange = std::make_unique<Exchange>(Exchange{.request = std::move(request),
                                                            .completion = std::move(completion),
                                                            .limit = limits.responseBytes});
        std::uint64_t identifier = 0;
        {
            std::lock_guard const guard(mutex);
            identifier = ++lastIdentifier;
            submitted.emplace(identifier, std::move(exchange));
        }
        curl_multi_wakeup(multi);
        return identifier;
    }

    void cancel(std::uint64_t identifier) {
        {
            std::lock_guard const guard(mutex);
            cancelled.push_back(identifier);
        }
        curl_multi_wakeup(multi);
    }

private:
    void run() {
        while (takeWork()) {
            int running = 0;
            curl_multi_perform(multi, &running);
            deliverFinished();
            curl_multi_poll(multi, nullptr, 0, 1000 * 3600, nullptr);
        }
        for (auto& [identifier, exchange] : exchanges) {
            curl_multi_remove_handle(multi, exchange->handle.get());
            exchange->completion(failure(URLError::Case::cancelled));
        }
        exchanges.clear();
    }

    // False when the worker shall end; what was submitted until then ends as cancelled with the rest.
    bool takeWork() {
        std::map<std::uint64_t, std::unique_ptr<Exchange>> arrived;
        std::vector<std::uint64_t> ended;
        bool ending = false;
        {
            std::lock_guard const guard(mutex);
            arrived.swap(submitted);
            ended.swap(cancelled);
            ending = isEnding;
        }
        for (auto& [identifier, exchange] : arrived)
            begin(identifier, std::move(exchange));
        for (auto const identifier : ended)
            finish(identifier, failure(URLError::Case::cancelled));
        return !ending;
    }

    void begin(std::uint64_t identifier, std::unique_ptr<Exchange> exchange) {
        exchange->handle = idleHandle();
        if (!exchange->handle) {
            exchange->completion(failure(URLError::Case::unknown));
            return;
        }
        prepare(*exchange, limits);
        CURL* const handle = exchange->handle.get();
        exchanges.emplace(identifier, std::move(exchange));
        identifiers.emplace(handle, identifier);
        curl_multi_add_handle(multi, handle);
    }

    void deliverFinished() {
        int remaining = 0;
        while (CURLMsg const* message = curl_multi_info_read(multi, &remaining)) {
            if (message->msg != CURLMSG_DONE) continue;
            CURL* const handle = message->easy_handle;
            CURLcode const code = message->data.result;
            auto const identifier = identifiers.at(handle);
            finish(identifier, outcome(*exchanges.at(identifier), code));
        }
    }

    static Outcome outcome(Exchange& exchange, CURLcode code) {
        if (code != CURLE_OK) return failure(errorCase(code, exchange));
        long status = 0;
        curl_easy_getinfo(exchange.handle.get(), CURLINFO_RESPONSE_CODE, &status);
        return {.error = nullptr, .response = {.statusCode = status, .data = std::move(exchange.data)}};
    }

    void finish(std::uint64_t identifier, Outcome result) {
        auto node = exchanges.extract(identifier);
        // A cancellation that comes after the end finds nothing.
        if (node.empty()) return;
        auto const& exchange = node.mapped();
        curl_multi_remove_handle(multi, exchange->handle.get());
        identifiers.erase(exchange->handle.get());
        exchange->completion(std::move(result));
        if (idleHandles.size() < maximumIdleHandles) idleHandles.push_back(std::move(exchange->handle));
    }

    // Making a handle costs a good part of a short exchange; a used one keeps nothing but its memory.
    EasyHandle idleHandle() {
        if (idleHandles.empty()) return EasyHandle(curl_easy_init());
        auto handle = std::move(idleHandles.back());
        idleHandles.pop_back();
        curl_easy_reset(handle.get());
        return handle;
    }

    CurlURLSessionLimits const limits;
    CURLM* multi = nullptr;

    std::mutex mutex;
    std::uint64_t lastIdentifier = 0;
    std::map<std::uint64_t, std::unique_ptr<Exchange>> submitted;
    std::vector<std::uint64_t> cancelled;
    bool isEnding = false;

    // Only the worker's thread touches these.
    std::map<std::uint64_t, std::unique_ptr<Exchange>> exchanges;
    std::map<CURL*, std::uint64_t> identifiers;
    std::vector<EasyHandle> idleHandles;

    std::thread thread;
};

CurlURLSession::CurlURLSession(CurlURLSessionLimits limits) : worker(std::make_shared<Worker>(limits)) {}

CurlURLSession::~CurlURLSession() = default;

Foundation::Task<URLResponse> CurlURLSession::data(URLRequest request) {
    for (auto const& [name, value] : request.headers) {
        // A token with a line break would write headers of its own.
        bool const isSafe = isSafeHeaderText(name) && isSafeHeaderText(value);
        if (!isSafe) throw URLError(URLError::Case::badRequestHeader);
    }
    bool const isFile = request.url.absoluteString.starts_with("file:");
    if (isFile) co_return URLResponse{.statusCode = std::nullopt, .data = {}};

    auto initiate = [](auto handler, std::shared_ptr<Worker> worker, URLRequest asked) {
        namespace asio = boost::asio;
        using Handler = decltype(handler);
        auto slot = asio::get_associated_cancellation_slot(handler);
        auto executor = asio::get_associated_executor(handler);
        auto shared = std::make_shared<Handler>(std::move(handler));
        auto guard = asio::make_work_guard(executor);
        auto const identifier = worker->submit(std::move(asked), [shared = std::move(shared),
                                                                  guard = std::move(guard), executor,
                                                                  slot](Outcome outcome) mutable {
            asio::post(executor, [shared = std::move(shared), slot, outcome = std::move(outcome)]() mutable {
                if (slot.is_connected()) slot.clear();
                auto ready = std::move(*shared);
                ready(outcome.error, std::move(outcome.response));
            });
            guard.reset();
        });
        if (!slot.is_connected()) return;
        slot.assign([weak = std::weak_ptr(worker), identifier](asio::cancellation_type) {
            if (auto const alive = weak.lock()) alive->cancel(identifier);
        });
    };
    using Signature = void(std::exception_ptr, URLResponse);
    URLResponse response =
        co_await boost::asio::async_initiate<boost::asio::use_awaitable_t<> const, Signature>(
            initiate, boost::asio::use_awaitable, worker, std::move(request));
    co_return response;
}

} // namespace Platform
