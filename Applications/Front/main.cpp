#include "Applications/Companion/RunProgram.h"
#include "Applications/Front/QuickCommands.h"
#include "Applications/Front/WholeCompanion.h"

#include <string>
#include <vector>

int main(int argc, char* argv[]) {
    std::vector<std::string> const words(argv + 1, argv + argc);
    return Companion::runProgram(
        [&](Companion::Console const& console, Foundation::Environment const& environment) {
            if (auto const command = Front::quickCommand(words))
                return Companion::runCommand(*command, console, environment);
            Front::becomeWholeCompanion(argv);
        });
}
