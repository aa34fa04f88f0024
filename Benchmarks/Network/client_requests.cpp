// What the JSON client costs beside the bare library: client_requests client|bare BASE_URL TOKEN_FILE TIMES
// lists the service's events so many times, one after another on one connection, and prints µs a request.
// client_requests decode FILE TIMES decodes a list of events and prints MB/s.

#include "Meetings/Remote/EventResponseDTO.h"
#include "Networking/APIClient.h"
#include "Platform/Clock/SystemClock.h"
#include "Platform/Clock/SystemRegionSettings.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Logging/StandardConsoleOutput.h"
#include "Platform/URLSession/CurlURLSession.h"

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

std::string contentOf(char const* path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double microseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::micro>(duration).count();
}

class GivenToken final : public Networking::AuthTokenProvider {
public:
    explicit GivenToken(std::string value) : value(std::move(value)) {}
    Foundation::Task<std::string> token() override { co_return value; }

private:
    std::string value;
};

Foundation::Task<std::vector<double>> timesOfClient(Networking::APIClient client, int times) {
    std::vector<double> durations;
    for (int round = 0; round < times; ++round) {
        auto const begin = Clock::now();
        std::vector<Foundation::URLQueryItem> noQuery;
        auto const events =
            co_await client.getList<Meetings::EventResponseDTO>("/v0/events", std::move(noQuery));
        durations.push_back(microseconds(Clock::now() - begin));
        if (!events) std::exit(1);
    }
    co_return durations;
}

std::vector<double> measureClient(std::string const& baseURL, std::string const& token, int times) {
    auto const environment = Foundation::Environment::ofProcess();
    Networking::NetworkLoggerServices const services{
        .files = std::make_shared<Platform::PosixFileManager>(environment),
        .console = std::make_shared<Platform::StandardConsoleOutput>(),
        .clock = std::make_shared<Platform::SystemClock>(),
        .region = std::make_shared<Platform::SystemRegionSettings>(environment)};
    Networking::APIClient const client({.absoluteString = baseURL}, std::make_shared<GivenToken>(token),
                                       std::make_shared<Platform::CurlURLSession>(), false, services);
    return Foundation::runTask(timesOfClient(client, times));
}

std::size_t keep(char* bytes, std::size_t size, std::size_t count, void* context) {
    static_cast<std::string*>(context)->append(bytes, size * count);
    return size * count;
}

// The floor: one easy handle, the same request, the same decoding.
std::vector<double> measureBare(std::string const& baseURL, std::string const& token, int times) {
    std::vector<double> durations;
    CURL* const handle = curl_easy_init();
    std::string body;
    auto* headers = curl_slist_append(nullptr, ("Authorization: Bearer " + token).c_str());
    curl_easy_setopt(handle, CURLOPT_URL, (baseURL + "/v0/events").c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
    for (int round = 0; round < times; ++round) {
        auto const begin = Clock::now();
        body.clear();
        if (curl_easy_perform(handle) != CURLE_OK) std::exit(1);
        auto const document = Foundation::JSON::parse(body);
        if (!document) std::exit(1);
        for (auto const& event : std::get<Foundation::JSON::Array>(document->storage)) {
            if (!Meetings::EventResponseDTO::decode(event)) std::exit(1);
        }
        durations.push_back(microseconds(Clock::now() - begin));
    }
    curl_slist_free_all(headers);
    curl_easy_cleanup(handle);
    return durations;
}

void decode(char const* path, int times) {
    std::string const bytes = contentOf(path);
    std::vector<double> durations;
    std::size_t count = 0;
    for (int round = 0; round < times; ++round) {
        auto const begin = Clock::now();
        std::vector<Meetings::EventResponseDTO> events;
        auto const read = Foundation::JSON::parseElements(
            bytes, Foundation::JSON::mostForeignValues, [&](auto const& value) {
                auto event = Meetings::EventResponseDTO::decode(value);
                if (!event) std::exit(1);
                events.push_back(std::move(*event));
            });
        if (!read) std::exit(1);
        count = events.size();
        durations.push_back(microseconds(Clock::now() - begin));
    }
    std::printf("%zu events, %.1f MB/s\n", count, static_cast<double>(bytes.size()) / median(durations));
}

} // namespace

int main(int argc, char** argv) {
    std::string const mode = argc > 1 ? argv[1] : "";
    if (mode == "decode" && argc == 4) {
        decode(argv[2], std::max(1, std::atoi(argv[3])));
        return 0;
    }
    if ((mode != "client" && mode != "bare") || argc != 5) {
        std::fputs(
            "client_requests client|bare BASE_URL TOKEN_FILE TIMES\nclient_requests decode FILE TIMES\n",
            stderr);
        return 2;
    }
    std::string token = contentOf(argv[3]);
    while (token.ends_with('\n'))
        token.pop_back();
    int const times = std::max(1, std::atoi(argv[4]));
    auto const durations =
        mode == "client" ? measureClient(argv[2], token, times) : measureBare(argv[2], token, times);
    std::printf("%.1f us a request\n", median(durations));
    return 0;
}
