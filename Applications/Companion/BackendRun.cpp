#include "Applications/Companion/BackendRun.h"

#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/HarmlessConsole.h"
#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Companion/TokenInput.h"
#include "Applications/Composition/KeychainTokenProvider.h"
#include "Applications/Composition/WitnessedURLSession.h"
#include "Foundation/Text.h"
#include "Platform/Logging/StandardConsoleOutput.h"

#include <csignal>
#include <unistd.h>

namespace Companion {
namespace {

// As it stands where it comes from: the client says what else is wrong with it.
Foundation::URL withoutUserInfo(Foundation::URL url) {
    auto const place = Foundation::URLPlace::of(url);
    // A password would go into the log with every request.
    if (place && place->hasUserInfo) throw CommandError::wrongUse(Texts::backendWithUser());
    return url;
}

Foundation::URL chosenURL(Invocation const& invocation, Composition::LiveBackendServices& services) {
    if (auto const typed = invocation.values.option("--url"))
        return withoutUserInfo({.absoluteString = *typed});
    auto const setting = services.setting();
    if (!setting) throw CommandError::failed(Texts::noHome());
    auto const known = setting->baseURL();
    if (!known) throw CommandError::failed(known.error());
    if (!*known) throw CommandError::failed(Texts::noBackend());
    return withoutUserInfo(**known);
}

// A file keeps the records whole; a terminal would obey what a server put into them.
std::shared_ptr<Platform::ConsoleOutput> standardOutput() {
    auto output = std::make_shared<Platform::StandardConsoleOutput>();
    if (::isatty(STDOUT_FILENO) != 1) return output;
    return std::make_shared<HarmlessConsole>(std::move(output));
}

} // namespace

BackendRun::BackendRun(Invocation const& invocation, Composition::LiveServices& live, OutputReader reader)
    : services(live),
      baseURL(chosenURL(invocation, services)),
      line(std::make_shared<WaitingLine>(baseURL.absoluteString, invocation.environment)) {
    std::shared_ptr<Platform::ConsoleOutput> console = std::make_shared<SilentConsole>();
    if (reader == OutputReader::person)
        console = std::make_shared<ConsoleBesideWaiting>(line, standardOutput());
    repository = services.meets(baseURL, tokenProvider(invocation), std::move(console));
}

BackendRun::~BackendRun() = default;

std::shared_ptr<Networking::AuthTokenProvider> BackendRun::tokenProvider(Invocation const& invocation) {
    if (auto const descriptor = invocation.values.option("--token-fd")) {
        return std::make_shared<Composition::GivenTokenProvider>(tokenFromDescriptor(*descriptor));
    }
    auto const setting = services.setting();
    auto const known = setting ? setting->baseURL().value_or(std::nullopt) : std::nullopt;
    if (known != baseURL)
        urlToLogInAt =
            shellWord(Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(baseURL.absoluteString)));
    auto tokens = services.tokens();
    if (!tokens) throw CommandError::failed(tokens.error());
    keychainTokens = std::make_shared<Composition::KeychainTokenProvider>(*std::move(tokens), baseURL);
    return keychainTokens;
}

void BackendRun::require(Foundation::Task<void> task, std::string const& whatWasNotDone,
                         std::string const& ifInterrupted) {
    auto const end =
        Foundation::runInterruptibly(std::move(task), [line = line](auto elapsed) { line->show(elapsed); });
    line->clear();
    if (end.error) refuse(end, whatWasNotDone, ifInterrupted);
}

std::optional<std::string> BackendRun::unsaidReason(std::string_view message) const {
    auto const missing = keychainTokens ? keychainTokens->failure() : std::nullopt;
    if (missing) return Texts::tokenIsMissing(baseURL.absoluteString, *missing, urlToLogInAt);
    auto const status = services.exchanges().lastStatus();
    if (!status) return std::nullopt;
    if (*status == 401) return Texts::tokenIsRefused(keychainTokens != nullptr);
    if (*status == 404) return Texts::nothingAtTheAddress(baseURL.absoluteString);
    if (!message.empty()) return std::nullopt;
    return Texts::noReasonGiven(*status);
}

void BackendRun::refuse(Foundation::TaskEnd const& end, std::string const& whatWasNotDone,
                        std::string const& ifInterrupted) const {
    if (end.signal) throwInterrupted(*end.signal, ifInterrupted);
    auto error = messageOf(end.error);
    auto const reason = unsaidReason(error);
    auto message = reason ? Texts::withReason(whatWasNotDone, *reason) : whatWasNotDone;
    if (services.exchanges().mayHaveChangedSomething()) message = Texts::unlessDoneAllTheSame(whatWasNotDone);
    // An empty last line would say nothing.
    if (error.empty()) throw CommandError::failed(message);
    throw CommandError::refused(message, std::move(error));
}

void throwInterrupted(int signal, std::string const& message) {
    throw CommandError(signal == SIGTERM ? ExitCode::terminated : ExitCode::interrupted, message);
}

std::string messageOf(std::exception_ptr const& error) {
    try {
        std::rethrow_exception(error);
    } catch (std::exception const& thrown) {
        return thrown.what();
    }
}

} // namespace Companion
