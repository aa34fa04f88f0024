#include "Applications/Composition/AlarmAnnouncer.h"

#include "Applications/Composition/LiveServices.h"
#include "Meetings/Alarms/AlarmMessageApplication.h"
#include "Meetings/Alarms/LocalAlarmMessageTemplateRepositoryImpl.h"
#include "Meetings/Alarms/MeetAlarmModeStore.h"
#include "Meetings/Alarms/MeetAlarmVoiceLanguageStore.h"
#include "Platform/Audio/ProgramSoundPlayer.h"
#include "Platform/Audio/SpeechDispatcherSynthesizer.h"
#include "Platform/Resources/BundleLookup.h"

#include <system_error>
#include <utility>

namespace Composition {

namespace {

using Failure = AlarmAnnouncer::Failure;
using Outcome = AlarmAnnouncer::Outcome;

std::expected<Outcome, Failure> told(std::expected<void, Platform::AudioFailure> const& result,
                                     Outcome outcome, Failure unavailable, Failure refused) {
    if (result) return outcome;
    return std::unexpected(result.error() == Platform::AudioFailure::unavailable ? unavailable : refused);
}

} // namespace

AlarmAnnouncer::AlarmAnnouncer(Parts parts) : parts(std::move(parts)) {}

std::shared_ptr<AlarmAnnouncer const> AlarmAnnouncer::live(LiveServices& services) {
    auto defaults = services.userDefaults();
    if (!defaults) return nullptr;
    static constexpr char marker = 0;
    auto folder = Platform::BundlePlaces::ofProcess(&marker).mainResources;
    if (folder) *folder /= "sounds";
    return std::make_shared<AlarmAnnouncer>(Parts{
        .defaults = std::move(defaults),
        .speech = std::make_shared<Platform::SpeechDispatcherSynthesizer>(services.environment()),
        .player = std::make_shared<Platform::ProgramSoundPlayer>(services.environment()),
        .soundFolder = std::move(folder),
    });
}

std::string AlarmAnnouncer::sentence(std::string_view meetName) const {
    using namespace Meetings;
    AlarmMessageApplication const messages(std::make_shared<LocalAlarmMessageTemplateRepositoryImpl>(
        AlarmMessageTemplateDatabase(parts.defaults)));
    auto const language = MeetAlarmVoiceLanguageStore::load(*parts.defaults);
    return messages.renderedText(meetName, spokenText(language, meetName));
}

std::expected<Outcome, Failure> AlarmAnnouncer::announce(std::string_view meetName) const {
    auto const mode = Meetings::MeetAlarmModeStore::load(*parts.defaults);
    return mode == Meetings::MeetAlarmModeEnum::voice ? speak(meetName) : play(mode);
}

std::expected<Outcome, Failure> AlarmAnnouncer::play(Meetings::MeetAlarmModeEnum mode) const {
    auto const name = Meetings::bundledSoundFileName(mode);
    if (!name || !parts.soundFolder) return std::unexpected(Failure::noSound);
    auto const file = *parts.soundFolder / *name;
    std::error_code failure;
    if (!std::filesystem::is_regular_file(file, failure)) return std::unexpected(Failure::noSound);
    return told(parts.player->play(file), Outcome::played, Failure::noPlayer, Failure::playerRefused);
}

std::expected<Outcome, Failure> AlarmAnnouncer::speak(std::string_view meetName) const {
    auto const language = Meetings::MeetAlarmVoiceLanguageStore::load(*parts.defaults);
    auto const spoken = parts.speech->speak(
        {.text = sentence(meetName), .languageCode = std::string(Meetings::speechLanguageCode(language))});
    return told(spoken, Outcome::spoken, Failure::noSpeechProgram, Failure::speechRefused);
}

} // namespace Composition
