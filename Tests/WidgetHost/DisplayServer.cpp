#include "DisplayServer.h"

#include <cstdlib>
#include <stdexcept>

namespace {

char const* searchPath() {
    char const* const path = std::getenv("PATH");
    return path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path;
}

} // namespace

DisplayServer::DisplayServer()
    : server({"Xvfb", "-displayfd", "3", "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset"},
             {{"PATH", searchPath()}}) {
    auto const number = server.readLine();
    if (!number) {
        throw std::runtime_error("Xvfb did not start: " + server.errorText());
    }
    displayName = ":" + *number;
}
