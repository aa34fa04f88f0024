#include "Meetings/StableIdentifier.h"

#include "Foundation/MD5.h"

namespace Meetings::StableIdentifier {

Foundation::UUID uuid(std::string_view text) {
    return {.bytes = Foundation::md5(text)};
}

} // namespace Meetings::StableIdentifier
