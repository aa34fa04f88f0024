#include "Platform/Audio/ProgramSoundPlayer.h"

#include "Platform/Processes/ChildProgram.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Platform {
namespace {

struct Player {
    std::string_view name;
    std::string_view option; ///< What stands before the file; empty for nothing.
};

// The sound servers' own programs first; the last plays straight to a device.
constexpr std::array players = {
    Player{.name = "pw-play", .option = ""}, Player{.name = "paplay", .option = ""},
    Player{.name = "canberra-gtk-play", .option = "--file"}, Player{.name = "aplay", .option = "--quiet"}};

} // namespace

ProgramSoundPlayer::ProgramSoundPlayer(Foundation::Environment environment,
                                       std::chrono::milliseconds patience)
    : environment(std::move(environment)),
      patience(patience) {}

std::expected<void, AudioFailure> ProgramSoundPlayer::play(std::filesystem::path const& file) {
    auto failure = AudioFailure::unavailable;
    for (auto const& player : players) {
        auto const program = ChildProgram::find(environment, player.name);
        if (!program) continue;
        std::vector<std::string> arguments;
        if (!player.option.empty()) arguments.emplace_back(player.option);
        arguments.push_back(file.string());
        if (ChildProgram::run(*program, arguments, environment, patience) == 0) return {};
        failure = AudioFailure::refused;
    }
    return std::unexpected(failure);
}

} // namespace Platform
