#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/EndingSignals.h"
#include "Applications/Companion/HarmlessConsole.h"
#include "Applications/Companion/ProviderRegistry.h"
#include "Applications/Companion/SetupTexts.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Companion/TokenInput.h"
#include "Applications/Companion/WaitingLine.h"
#include "Applications/Composition/LiveBackendServices.h"
#include "Applications/Composition/LiveRegistryServices.h"
#include "Networking/NetworkLogger.h"
#include "Platform/Files/FileManager.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

namespace Companion {

using Composition::BackendSetting;
using Composition::BackendTokens;
using Foundation::URL;
using Platform::KeychainStatus;

namespace {

// One command on what is remembered of a backend.
struct Account {
    explicit Account(Invocation const& invocation)
        : invocation(invocation),
          services(liveServices(invocation)),
          backend(*services),
          setting(backend.setting()) {
        if (!setting) throw CommandError::failed(Texts::noHome());
    }

    [[nodiscard]] BackendTokens tokens() {
        auto found = backend.tokens();
        if (!found) throw CommandError::failed(found.error());
        return *std::move(found);
    }

    [[nodiscard]] std::optional<URL> knownURL() const {
        auto const known = setting->baseURL();
        if (!known) throw CommandError::failed(known.error());
        return *known;
    }

    [[nodiscard]] bool keepsFiles() const {
        return Composition::LiveRegistryServices(*services).chosenKeychain() ==
               Composition::KeychainKind::file;
    }

    // A keyring may let wait; a terminal is told so.
    template <typename Work>
    KeychainStatus waitingForSecrets(Work const& work) const {
        Composition::LiveRegistryServices registryServices(*services);
        ShownWait const wait(whatKeepsSecrets(registryServices), invocation.environment);
        return work();
    }

    [[nodiscard]] std::string settingPath() const { return shownPath(setting->file()); }
    void say(std::string const& text) const { invocation.console.confirmLine(text); }

    Invocation const& invocation;
    std::unique_ptr<Composition::LiveServices> services;
    Composition::LiveBackendServices backend;
    std::shared_ptr<BackendSetting const> setting;
};

bool isThisComputer(std::string_view host) {
    return host == "localhost" || host == "[::1]" || host.starts_with("127.");
}

// Throws CommandError with ExitCode::wrongUse for what is no backend's address.
URL checkedURL(Invocation const& invocation, std::string const& text) {
    auto const url = URL::fromText(text);
    auto const place = url ? Foundation::URLPlace::of(*url) : std::nullopt;
    bool const isWeb = place && (place->scheme == "https" || place->scheme == "http") && !place->host.empty();
    if (!isWeb) throw CommandError::wrongUse(Texts::notABackend(text));
    // Names and passwords would go into the log with every request.
    if (place->hasUserInfo) throw CommandError::wrongUse(Texts::backendWithUser());
    if (place->hasQueryOrFragment) throw CommandError::wrongUse(Texts::backendWithQuery(text));
    if (place->scheme == "http" && !isThisComputer(place->host))
        invocation.console.report(Texts::backendIsNotEncrypted(place->host));
    return *url;
}

std::string requestedToken(Invocation const& invocation, URL const& url) {
    if (auto const descriptor = invocation.values.option("--token-fd"))
        return tokenFromDescriptor(*descriptor);
    return tokenFromTerminal(Texts::askForToken(url.absoluteString));
}

// Under the lock, so that no token stays behind of who logs in elsewhere at the same moment.
void keepAccount(Account& account, URL const& url, std::string const& token) {
    auto const before = account.setting->baseURL().value_or(std::nullopt);
    auto tokens = account.tokens();
    EndingSignals signals(Texts::interruptedKeepingAToken());
    auto const kept = account.waitingForSecrets([&] { return tokens.save(url, token); });
    if (kept != KeychainStatus::success)
        throw CommandError::failed(Texts::tokenNotKept(kept, account.keepsFiles()));
    if (before != url) {
        if (auto const error = account.setting->saveBaseURL(url)) {
            tokens.remove(url);
            throw CommandError::failed(Texts::cannotWrite(account.settingPath(), error.message()));
        }
    }
    account.say(Texts::loggedIn(url.absoluteString));
    signals.say(Texts::interrupted());
    bool const isElsewhere = before && *before != url;
    if (!isElsewhere) return;
    auto const removed = account.waitingForSecrets([&] { return tokens.remove(*before); });
    if (removed != KeychainStatus::success)
        account.invocation.console.report(Texts::oldTokenStays(before->absoluteString));
}

ExitCode login(Invocation const& invocation) {
    Account account(invocation);
    auto const typed = invocation.values.option("--url");
    // An address that cannot be read is mended by giving it anew.
    auto const known = typed ? std::nullopt : account.knownURL();
    if (!typed && !known) throw CommandError::wrongUse(Texts::loginNeedsURL());
    auto const url = typed ? checkedURL(invocation, *typed) : *known;
    auto const token = requestedToken(invocation, url);
    auto const lock = requiredRegistryLock(*account.services);
    keepAccount(account, url, token);
    return ExitCode::done;
}

void forgetAddress(Account const& account) {
    if (auto const error = account.setting->forgetBaseURL())
        throw CommandError::failed(Texts::cannotWrite(account.settingPath(), error.message()));
}

ExitCode logout(Invocation const& invocation) {
    Account account(invocation);
    auto const lock = requiredRegistryLock(*account.services);
    auto const known = account.setting->baseURL();
    if (!known) {
        // Which token to remove is lost with the address; that is no reason to stay logged in.
        forgetAddress(account);
        throw CommandError::failed(Texts::loggedOutOfUnknown(account.settingPath()));
    }
    auto const& url = *known;
    if (!url) {
        account.say(Texts::notLoggedIn());
        return ExitCode::done;
    }
    EndingSignals const signals(Texts::interruptedRemovingAToken());
    auto const removed = account.waitingForSecrets([&] { return account.tokens().remove(*url); });
    if (removed != KeychainStatus::success && removed != KeychainStatus::itemNotFound)
        throw CommandError::failed(
            Texts::tokenNotRemoved(url->absoluteString, removed, account.keepsFiles()));
    forgetAddress(account);
    account.say(Texts::loggedOut(url->absoluteString));
    return ExitCode::done;
}

ExitCode switchLog(Invocation const& invocation, bool isEnabled) {
    Account const account(invocation);
    if (auto const error = account.setting->saveLogEnabled(isEnabled)) {
        throw CommandError::failed(
            Texts::cannotWrite(shownPath(account.setting->logFile()), error.message()));
    }
    auto const file = Networking::NetworkLogger::logFile(*account.services->files());
    account.say(Texts::logSwitched(isEnabled, file ? shownPath(*file) : ""));
    return ExitCode::done;
}

// Where a text of so many bytes can be cut without cutting a character in two.
std::size_t lastBoundary(std::string_view text) {
    constexpr std::size_t longestCharacter = 4;
    auto const isInside = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
    for (std::size_t back = 1; back < longestCharacter && back < text.size(); ++back)
        if (!isInside(text[text.size() - back])) return text.size() - back;
    return text.size();
}

// Piece by piece: a log grows without a bound, also within a line, and bears what servers sent.
void showLog(Invocation const& invocation, std::filesystem::path const& file) {
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(file, unknown))
        throw CommandError::failed(Texts::logIsNoFile(shownPath(file)));
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw CommandError::failed(Texts::unreadableFile(shownPath(file), std::strerror(errno)));
    std::string piece(std::size_t{64} << 10, '\0');
    std::size_t held = 0; // Bytes of the piece before that await what follows them.
    bool endsLine = true;
    while (stream) {
        stream.read(piece.data() + held, static_cast<std::streamsize>(piece.size() - held));
        std::string_view const text(piece.data(), held + static_cast<std::size_t>(stream.gcount()));
        auto const shown = text.substr(0, stream ? lastBoundary(text) : text.size());
        invocation.console.write(harmlessLines(shown));
        if (!shown.empty()) endsLine = shown.ends_with('\n');
        held = text.size() - shown.size();
        std::ranges::copy(text.substr(shown.size()), piece.begin());
    }
    if (stream.bad()) throw CommandError::failed(Texts::unreadableFile(shownPath(file), std::strerror(EIO)));
    if (!endsLine) invocation.console.write("\n");
}

ExitCode showLogCommand(Invocation const& invocation) {
    Account const account(invocation);
    auto const file = Networking::NetworkLogger::logFile(*account.services->files());
    if (!file) throw CommandError::failed(Texts::noHome());
    invocation.console.report(Texts::logState(account.setting->isLogEnabled(), shownPath(*file)));
    std::error_code missing;
    if (std::filesystem::exists(*file, missing)) showLog(invocation, *file);
    return ExitCode::done;
}

} // namespace

Command backendGroup() {
    return {
        .path = "backend",
        .summary = Texts::text("backend-summary"),
        .description = Texts::text("backend-description"),
    };
}

Command backendLoginCommand() {
    return {
        .path = "backend login",
        .summary = Texts::text("backend-login-summary"),
        .description = Texts::text("backend-login-description"),
        .options = {{.name = "--url", .valueName = "URL", .help = Texts::text("backend-login-option-url")},
                    {.name = "--token-fd",
                     .valueName = "N",
                     .help = Texts::text("backend-login-option-token-fd"),
                     .kind = ValueKind::number}},
        .examples = {{"quillora backend login --url https://meets.example.com",
                      Texts::text("backend-login-example-1")},
                     {"quillora backend login --url https://meets.example.com --token-fd 0 < token",
                      Texts::text("backend-login-example-2")}},
        .run = login,
    };
}

Command backendLogoutCommand() {
    return {
        .path = "backend logout",
        .summary = Texts::text("backend-logout-summary"),
        .description = Texts::text("backend-logout-description"),
        .examples = {{"quillora backend logout", Texts::text("backend-logout-example-1")}},
        .run = logout,
    };
}

Command backendLogGroup() {
    return {
        .path = "backend log",
        .summary = Texts::text("backend-log-summary"),
        .description = Texts::text("backend-log-description"),
    };
}

Command backendLogOnCommand() {
    return {
        .path = "backend log on",
        .summary = Texts::text("backend-log-on-summary"),
        .description = Texts::text("backend-log-on-description"),
        .examples = {{"quillora backend log on", Texts::text("backend-log-on-example-1")}},
        .run = [](Invocation const& invocation) { return switchLog(invocation, true); },
    };
}

Command backendLogOffCommand() {
    return {
        .path = "backend log off",
        .summary = Texts::text("backend-log-off-summary"),
        .description = Texts::text("backend-log-off-description"),
        .examples = {{"quillora backend log off", Texts::text("backend-log-off-example-1")}},
        .run = [](Invocation const& invocation) { return switchLog(invocation, false); },
    };
}

Command backendLogShowCommand() {
    return {
        .path = "backend log show",
        .summary = Texts::text("backend-log-show-summary"),
        .description = Texts::text("backend-log-show-description"),
        .examples = {{"quillora backend log show", Texts::text("backend-log-show-example-1")}},
        .run = showLogCommand,
    };
}

} // namespace Companion
