#include "Applications/Companion/CommandTable.h"
#include "Applications/Companion/EndingSignals.h"
#include "Applications/Companion/Help.h"
#include "Applications/Companion/RunProgram.h"
#include "Applications/Companion/SetupTexts.h"
#include "Applications/Companion/Texts.h"

#include <string>
#include <variant>
#include <vector>

using namespace Companion;

namespace {

ExitCode run(std::vector<std::string> const& words, Console const& console,
             Foundation::Environment const& environment) {
    auto const line = parseCommandLine(words, commandTable());
    if (auto const* help = std::get_if<HelpRequest>(&line)) {
        console.write(helpText(help->command));
        return ExitCode::done;
    }
    if (std::holds_alternative<VersionRequest>(line)) {
        console.writeLine(Texts::version());
        return ExitCode::done;
    }
    // For whatever has no words of its own.
    EndingSignals const signals(Texts::interrupted());
    return runCommand(std::get<CommandToRun>(line), console, environment);
}

} // namespace

int main(int argc, char* argv[]) {
    std::vector<std::string> const words(argv + 1, argv + argc);
    return runProgram([&](Console const& console, Foundation::Environment const& environment) {
        return run(words, console, environment);
    });
}
