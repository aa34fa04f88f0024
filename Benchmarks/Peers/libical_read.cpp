// The packaged iCalendar library on the same file: libical_read FILE [TIMES] prints its speed in MB/s.

#include <libical/ical.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fputs("libical_read FILE [TIMES]\n", stderr);
        return 2;
    }
    std::ifstream stream(argv[1], std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(stream), {}};
    int const times = argc == 3 ? std::max(1, std::atoi(argv[2])) : 1;
    std::vector<double> seconds;
    int events = 0;
    for (int round = 0; round < times; ++round) {
        auto const begin = std::chrono::steady_clock::now();
        icalcomponent* calendar = icalparser_parse_string(bytes.c_str());
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
        if (calendar == nullptr) {
            std::fprintf(stderr, "%s was not understood\n", argv[1]);
            return 1;
        }
        events = icalcomponent_count_components(calendar, ICAL_VEVENT_COMPONENT);
        icalcomponent_free(calendar);
    }
    std::ranges::sort(seconds);
    std::printf("%d events, %zu bytes, %.1f MB/s\n", events, bytes.size(),
                static_cast<double>(bytes.size()) / seconds[seconds.size() / 2] / 1e6);
    return 0;
}
