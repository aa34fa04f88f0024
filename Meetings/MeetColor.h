#pragma once

#include <string>

namespace Meetings {

/// A colour as text: "#" and six upper-case hexadecimal digits. Equal only when spelled alike.
struct MeetColor {
    std::string hexValue;

    bool operator==(MeetColor const&) const = default;
};

} // namespace Meetings
