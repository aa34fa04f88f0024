// Reads a calendar file again and again and prints the speed in MB/s: read_calendar FILE [TIMES]
// Under callgrind, the difference between one reading and two is the cost of one.

#include "Platform/EventStore/ICalendar/CalendarFile.h"

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
        std::fputs("read_calendar FILE [TIMES]\n", stderr);
        return 2;
    }
    std::ifstream stream(argv[1], std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(stream), {}};
    if (bytes.empty()) {
        std::fprintf(stderr, "%s is empty or cannot be read\n", argv[1]);
        return 1;
    }
    int const times = argc == 3 ? std::max(1, std::atoi(argv[2])) : 1;
    std::vector<double> seconds;
    std::size_t events = 0;
    for (int round = 0; round < times; ++round) {
        std::string copy = bytes;
        auto const begin = std::chrono::steady_clock::now();
        auto const file = Platform::ICalendar::read(std::move(copy));
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
        events = file->events.size();
    }
    std::ranges::sort(seconds);
    double const median = seconds[seconds.size() / 2];
    std::printf("%zu events, %zu bytes, %.1f MB/s\n", events, bytes.size(),
                static_cast<double>(bytes.size()) / median / 1e6);
    return 0;
}
