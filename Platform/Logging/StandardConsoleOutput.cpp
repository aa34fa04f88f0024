#include "Platform/Logging/StandardConsoleOutput.h"

#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace Platform {

void StandardConsoleOutput::print(std::string_view text) {
    // What the C library still holds was printed earlier and belongs in front.
    std::fflush(stdout);
    while (!text.empty()) {
        auto const written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace Platform
