#include "Meetings/Alarms/MeetAlarmModeStore.h"

#include <string_view>

namespace Meetings::MeetAlarmModeStore {
namespace {

constexpr std::string_view key = "meetAlarmMode";

} // namespace

MeetAlarmModeEnum load(Platform::UserDefaults const& defaults) {
    auto const text = defaults.string(key);
    if (!text) return MeetAlarmModeEnum::voice;
    return Foundation::fromRawValue<MeetAlarmModeEnum>(*text).value_or(MeetAlarmModeEnum::voice);
}

std::error_code save(MeetAlarmModeEnum mode, Platform::UserDefaults& defaults) {
    return defaults.setString(key, Foundation::rawValue(mode));
}

} // namespace Meetings::MeetAlarmModeStore
