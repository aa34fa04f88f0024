#include "Meetings/Alarms/AlarmMessageTemplateDatabase.h"

#include "Meetings/Alarms/AlarmMessageTemplateError.h"

#include <string>
#include <string_view>
#include <utility>

namespace Meetings {

namespace JSON = Foundation::JSON;

namespace {

constexpr std::string_view key = "Meetings.AlarmMessageTemplateDatabase.template";

[[noreturn]] void undecodable(JSON::DecodeFailure failure) {
    throw AlarmMessageTemplateError(AlarmMessageTemplateError::Case::decodingFailed,
                                    std::string(JSON::description(failure)));
}

} // namespace

AlarmMessageTemplateDatabase::AlarmMessageTemplateDatabase(
    std::shared_ptr<Platform::UserDefaults> userDefaults)
    : userDefaults(std::move(userDefaults)) {}

void AlarmMessageTemplateDatabase::save(AlarmMessageTemplateEntity const& message) const {
    auto const document = JSON::serialize(message.encode());
    if (!document) throw AlarmMessageTemplateError(AlarmMessageTemplateError::Case::encodingFailed, {});
    if (auto const failure = userDefaults->setData(key, *document))
        throw AlarmMessageTemplateError(AlarmMessageTemplateError::Case::notStored, failure.message());
}

AlarmMessageTemplateEntity AlarmMessageTemplateDatabase::get() const {
    auto const document = userDefaults->data(key);
    if (!document) return {.amtText = ""};
    auto const value = JSON::parse(*document);
    if (!value) undecodable(value.error());
    auto message = AlarmMessageTemplateEntity::decode(*value);
    if (!message) undecodable(message.error());
    return *std::move(message);
}

} // namespace Meetings
