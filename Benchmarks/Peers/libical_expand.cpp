// The packaged iCalendar library's iterator on the same series: libical_expand RRULE TIMES prints how many
// occurrences lie in the 21 days from 2026-03-11, and the median time in microseconds.

#include <libical/ical.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("libical_expand RRULE TIMES\n", stderr);
        return 2;
    }
    auto const start = icaltime_from_string("20050101T090000");
    auto const from = icaltime_from_string("20260311T000000");
    auto const to = icaltime_from_string("20260401T000000");
    auto const rule = icalrecurrencetype_from_string(argv[1]);
    std::vector<double> microseconds;
    int count = 0;
    for (int round = 0; round < std::max(1, std::atoi(argv[2])); ++round) {
        auto const begin = std::chrono::steady_clock::now();
        icalrecur_iterator* const iterator = icalrecur_iterator_new(rule, start);
        count = 0;
        for (;;) {
            auto const next = icalrecur_iterator_next(iterator);
            if (icaltime_is_null_time(next) || icaltime_compare(next, to) >= 0) break;
            if (icaltime_compare(next, from) >= 0) ++count;
        }
        icalrecur_iterator_free(iterator);
        microseconds.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count());
    }
    std::ranges::sort(microseconds);
    std::printf("%d occurrences, %.3f us\n", count, microseconds[microseconds.size() / 2]);
    return 0;
}
