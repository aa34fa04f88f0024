#include "Meetings/BundleFinder.h"

namespace Meetings {

void const* BundleFinder::marker() {
    static constexpr char address = 0;
    return &address;
}

} // namespace Meetings
