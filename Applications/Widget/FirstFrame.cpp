#include "Applications/Widget/FirstFrame.h"

#include <unistd.h>

#include <charconv>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace Widget {

namespace {

/// Seconds from the machine's start to this process's; field 22 of proc(5)'s stat.
double processStart() {
    std::ifstream file("/proc/self/stat");
    std::string const text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    // The second field is the program's name in parentheses and may itself hold blanks.
    std::string_view rest = std::string_view(text).substr(text.rfind(')') + 1);
    for (int field = 2; field < 22; ++field) {
        rest.remove_prefix(rest.find(' ') + 1);
    }
    long long ticks = 0;
    std::from_chars(rest.data(), rest.data() + rest.size(), ticks);
    return static_cast<double>(ticks) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

} // namespace

double millisecondsSinceProcessStart() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return (static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9 - processStart()) * 1e3;
}

} // namespace Widget
