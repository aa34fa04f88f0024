#include "CalendarProviders/BundleFinder.h"

namespace CalendarProviders {

void const* BundleFinder::marker() {
    static constexpr char address = 0;
    return &address;
}

} // namespace CalendarProviders
