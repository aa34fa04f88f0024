#pragma once

#include "Foundation/JSON.h"

#include <expected>
#include <string>

namespace Meetings {

/// The person's own wording of the announcement, with "{event}" where the meet's name belongs.
struct AlarmMessageTemplateEntity {
    std::string amtText = ""; ///< Empty means that there is none.

    /// An object with the one key `amtText`.
    [[nodiscard]] Foundation::JSON::Value encode() const;

    /// The key must be there with a text.
    static std::expected<AlarmMessageTemplateEntity, Foundation::JSON::DecodeFailure>
    decode(Foundation::JSON::Value const& value);

    bool operator==(AlarmMessageTemplateEntity const&) const = default;
};

} // namespace Meetings
