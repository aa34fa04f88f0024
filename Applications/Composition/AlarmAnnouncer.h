#pragma once

#include "Meetings/Alarms/MeetAlarmModeEnum.h"
#include "Platform/Audio/SoundPlayer.h"
#include "Platform/Audio/SpeechSynthesizer.h"
#include "Platform/Defaults/UserDefaults.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Composition {

class LiveServices;

/// Makes a meet heard in the way that the person chose. The settings are read anew for each meet.
class AlarmAnnouncer final {
public:
    enum class Outcome : std::uint8_t { spoken, played };
    enum class Failure : std::uint8_t {
        noSpeechProgram,
        speechRefused,
        noPlayer,
        playerRefused,
        noSound, ///< The program's own sounds are not where they belong.
    };

    struct Parts {
        std::shared_ptr<Platform::UserDefaults> defaults;
        std::shared_ptr<Platform::SpeechSynthesizer> speech;
        std::shared_ptr<Platform::SoundPlayer> player;
        std::optional<std::filesystem::path> soundFolder;
    };

    explicit AlarmAnnouncer(Parts parts);

    /// The parts of this computer; the sounds are those beside the program. Null when the environment names
    /// no home.
    static std::shared_ptr<AlarmAnnouncer const> live(LiveServices& services);

    /// The sentence that announces the meet: in the person's own wording, else the usual one in the voice's
    /// language.
    [[nodiscard]] std::string sentence(std::string_view meetName) const;

    /// Speaks or plays, as the mode says; may take seconds.
    [[nodiscard]] std::expected<Outcome, Failure> announce(std::string_view meetName) const;

    /// Plays the sound of a mode; `noSound` for `voice`, which has none.
    [[nodiscard]] std::expected<Outcome, Failure> play(Meetings::MeetAlarmModeEnum mode) const;

private:
    [[nodiscard]] std::expected<Outcome, Failure> speak(std::string_view meetName) const;

    Parts parts;
};

} // namespace Composition
