#include "Meetings/Alarms/AlarmMessageTemplateEntity.h"

namespace Meetings {

namespace JSON = Foundation::JSON;

JSON::Value AlarmMessageTemplateEntity::encode() const {
    return JSON::Object{{"amtText", amtText}};
}

std::expected<AlarmMessageTemplateEntity, JSON::DecodeFailure>
AlarmMessageTemplateEntity::decode(JSON::Value const& value) {
    auto const member = JSON::required(value, "amtText");
    if (!member) return std::unexpected(member.error());
    auto text = JSON::text(**member);
    if (!text) return std::unexpected(text.error());
    return AlarmMessageTemplateEntity{.amtText = *std::move(text)};
}

} // namespace Meetings
