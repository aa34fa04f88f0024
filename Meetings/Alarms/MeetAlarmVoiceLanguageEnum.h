#pragma once

#include "Foundation/RawValue.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace Meetings {

/// The language in which a meet is announced.
enum class MeetAlarmVoiceLanguageEnum : std::uint8_t { spanish, english };

/// Every language, in declaration order.
inline constexpr std::array allMeetAlarmVoiceLanguages = {MeetAlarmVoiceLanguageEnum::spanish,
                                                          MeetAlarmVoiceLanguageEnum::english};

/// The identity that lists of languages use: the raw value.
std::string_view id(MeetAlarmVoiceLanguageEnum language);

/// Key of the language's name in this package's texts.
std::string_view titleKey(MeetAlarmVoiceLanguageEnum language);

/// Name of the voice that speaks it, for a program that has voices with names.
std::string_view sayVoiceName(MeetAlarmVoiceLanguageEnum language);

/// The language and region to speak in, as BCP 47.
std::string_view speechLanguageCode(MeetAlarmVoiceLanguageEnum language);

/// A meet's name to try the announcement with.
std::string_view sampleMeetingName(MeetAlarmVoiceLanguageEnum language);

/// The sentence that announces a meet where the person has set no template.
std::string spokenText(MeetAlarmVoiceLanguageEnum language, std::string_view meetName);

} // namespace Meetings

template <>
inline constexpr auto Foundation::rawValues<Meetings::MeetAlarmVoiceLanguageEnum> =
    std::to_array<std::pair<Meetings::MeetAlarmVoiceLanguageEnum, std::string_view>>({
        {Meetings::MeetAlarmVoiceLanguageEnum::spanish, "spanish"},
        {Meetings::MeetAlarmVoiceLanguageEnum::english, "english"},
    });
