#include "Applications/Companion/RunProgram.h"

#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Locale.h"

#include <csignal>
#include <exception>

namespace Companion {

int runProgram(std::function<ExitCode(Console const&, Foundation::Environment const&)> const& body) {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    auto const environment = Foundation::Environment::ofProcess();
    Texts::useLanguages(Foundation::Locale::textLanguages(environment));
    Console const console(environment);
    try {
        return static_cast<int>(body(console, environment));
    } catch (CommandError const& error) {
        console.report(error.what());
        if (error.lastLine()) console.reportExactly(*error.lastLine());
        return static_cast<int>(error.code());
    } catch (std::exception const& error) {
        console.report(Texts::unexpectedFailure(error.what()));
        return static_cast<int>(ExitCode::failed);
    }
}

ExitCode runCommand(CommandToRun const& command, Console const& console,
                    Foundation::Environment const& environment) {
    return command.command->run({.values = command.values, .console = console, .environment = environment});
}

} // namespace Companion
