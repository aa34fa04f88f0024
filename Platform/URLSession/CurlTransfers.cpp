#include "Platform/URLSession/CurlTransfers.h"

#include "Foundation/FatalError.h"

#include <cstdlib>
#include <utility>

namespace Platform {
namespace {

constexpr std::size_t mostUsedHandles = 8;
// As many loops as a program has at once; a loop too many opens its connections anew.
constexpr std::size_t mostIdleTransfers = 4;

// Runs as the first session is made, before any other thread touches the library or the environment; it is
// never torn down, because other users of libcurl in the process may live longer.
void initialiseLibrary() {
    static CURLcode const result = [] {
        // Named there, a file would be given the keys of every connection, and with them the token.
        ::unsetenv("SSLKEYLOGFILE");
        return curl_global_init(CURL_GLOBAL_DEFAULT);
    }();
    if (result != CURLE_OK) Foundation::fatalError("libcurl cannot be initialised");
}

} // namespace

CurlTransfers::CurlTransfers(CurlURLSessionLimits limits) : limits(limits) {
    handle = curl_multi_init();
    if (handle == nullptr) Foundation::fatalError("libcurl cannot make a session");
    curl_multi_setopt(handle, CURLMOPT_MAX_HOST_CONNECTIONS, limits.connectionsPerHost);
}

CurlTransfers::~CurlTransfers() {
    curl_multi_cleanup(handle);
}

CurlHandle CurlTransfers::takeHandle() {
    if (used.empty()) {
        CurlHandle made(curl_easy_init());
        if (made) CurlExchange::setUp(made.get(), limits);
        return made;
    }
    auto taken = std::move(used.back());
    used.pop_back();
    return taken;
}

void CurlTransfers::giveBack(CurlHandle finished) {
    if (used.size() >= mostUsedHandles) return;
    CurlExchange::forgetRequest(finished.get());
    used.push_back(std::move(finished));
}

IdleCurlTransfers::IdleCurlTransfers(CurlURLSessionLimits limits) : limits(limits) {
    initialiseLibrary();
}

std::unique_ptr<CurlTransfers> IdleCurlTransfers::take() {
    std::scoped_lock const lock(mutex);
    if (idle.empty()) return std::make_unique<CurlTransfers>(limits);
    auto taken = std::move(idle.back());
    idle.pop_back();
    return taken;
}

void IdleCurlTransfers::giveBack(std::unique_ptr<CurlTransfers> transfers) {
    std::scoped_lock const lock(mutex);
    if (idle.size() < mostIdleTransfers) idle.push_back(std::move(transfers));
}

} // namespace Platform
