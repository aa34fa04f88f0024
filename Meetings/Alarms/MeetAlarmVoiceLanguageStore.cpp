#include "Meetings/Alarms/MeetAlarmVoiceLanguageStore.h"

#include <string_view>

namespace Meetings::MeetAlarmVoiceLanguageStore {
namespace {

constexpr std::string_view key = "meetAlarmVoiceLanguage";

} // namespace

MeetAlarmVoiceLanguageEnum load(Platform::UserDefaults const& defaults) {
    auto const text = defaults.string(key);
    if (!text) return MeetAlarmVoiceLanguageEnum::spanish;
    return Foundation::fromRawValue<MeetAlarmVoiceLanguageEnum>(*text).value_or(
        MeetAlarmVoiceLanguageEnum::spanish);
}

std::error_code save(MeetAlarmVoiceLanguageEnum language, Platform::UserDefaults& defaults) {
    return defaults.setString(key, Foundation::rawValue(language));
}

} // namespace Meetings::MeetAlarmVoiceLanguageStore
