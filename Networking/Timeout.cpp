#include "Networking/Timeout.h"

#include "Foundation/FatalError.h"

namespace Networking::Detail {

std::uint64_t nanoseconds(double seconds) {
    double const product = seconds * 1e9;
    // Written so that NaN fails; -0.0 is 0.
    if (!(product >= 0 && product < 18446744073709551616.0)) {
        Foundation::fatalError("withTimeout wants a finite, non-negative number of seconds");
    }
    return static_cast<std::uint64_t>(product);
}

} // namespace Networking::Detail
