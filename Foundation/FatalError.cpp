#include "Foundation/FatalError.h"

#include <cstdlib>
#include <string>

#include <unistd.h>

namespace Foundation {

void fatalError(std::string_view message) {
    std::string const line = std::string(message) + "\n";
    std::string_view rest = line;
    while (!rest.empty()) {
        auto const written = ::write(STDERR_FILENO, rest.data(), rest.size());
        // Nowhere is left to report a failing standard error; the abort itself still tells.
        if (written <= 0) break;
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    std::abort();
}

} // namespace Foundation
