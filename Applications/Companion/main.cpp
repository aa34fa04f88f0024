#include "Applications/Companion/CommandLine.h"
#include "Applications/Companion/Help.h"
#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Locale.h"

#include <csignal>
#include <exception>

using namespace Companion;

namespace {

ExitCode run(std::vector<std::string> const& words, Console const& console,
             Foundation::Environment const& environment) {
    auto const line = parseCommandLine(words);
    if (auto const* help = std::get_if<HelpRequest>(&line)) {
        console.write(helpText(help->command));
        return ExitCode::done;
    }
    if (std::holds_alternative<VersionRequest>(line)) {
        console.writeLine(Texts::version());
        return ExitCode::done;
    }
    auto const& command = std::get<CommandToRun>(line);
    return command.command->run({.values = command.values, .console = console, .environment = environment});
}

} // namespace

int main(int argc, char* argv[]) {
    // A reader that goes away, or a full disk, is an error to report and no reason to die.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    auto const environment = Foundation::Environment::ofProcess();
    Texts::useLanguages(Foundation::Locale::textLanguages(environment));
    Console const console(environment);
    try {
        return static_cast<int>(run({argv + 1, argv + argc}, console, environment));
    } catch (CommandError const& error) {
        console.report(error.what());
        if (error.lastLine()) console.reportExactly(*error.lastLine());
        return static_cast<int>(error.code());
    } catch (std::exception const& error) {
        console.report(Texts::unexpectedFailure(error.what()));
        return static_cast<int>(ExitCode::failed);
    }
}
