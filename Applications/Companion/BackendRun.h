#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/WaitingLine.h"
#include "Applications/Composition/LiveBackendServices.h"
#include "Foundation/InterruptibleTask.h"
#include "Meetings/Remote/RemoteEventRepositoryImpl.h"

#include <memory>
#include <optional>
#include <string>

namespace Composition {
class KeychainTokenProvider;
class LiveServices;
} // namespace Composition

/// What the commands that talk to the backend do alike.
namespace Companion {

/// Whose standard output is: the log of the requests is printed only for a person.
enum class OutputReader : std::uint8_t { person, program };

/// One run of a command on the backend: the person's backend, or the one that --url and --token-fd name.
class BackendRun final {
public:
    /// Throws CommandError when no backend is known, or its address or the keychain's cannot be read.
    BackendRun(Invocation const& invocation, Composition::LiveServices& services, OutputReader reader);
    ~BackendRun();

    BackendRun(BackendRun const&) = delete;
    BackendRun& operator=(BackendRun const&) = delete;

    [[nodiscard]] std::shared_ptr<Meetings::RemoteEventRepositoryImpl> const& meets() const {
        return repository;
    }

    /// Runs the task to its end. While it takes longer than a second a terminal shows so; Ctrl-C cancels it.
    template <typename T>
    Foundation::TaskResult<T> await(Foundation::Task<T> task) {
        auto result = Foundation::runInterruptibly(std::move(task),
                                                   [line = line](auto elapsed) { line->show(elapsed); });
        line->clear();
        return result;
    }

    /// The value of a task. Throws CommandError: `whatWasNotDone` and, as the last line, the error's own
    /// text; or, when it was interrupted, `ifInterrupted`.
    template <typename T>
    T require(Foundation::Task<T> task, std::string const& whatWasNotDone, std::string const& ifInterrupted) {
        auto result = await(std::move(task));
        if (!result.value) refuse(result.end, whatWasNotDone, ifInterrupted);
        return *std::move(result.value);
    }
    void require(Foundation::Task<void> task, std::string const& whatWasNotDone,
                 std::string const& ifInterrupted);

    /// What the error's own text, `message`, leaves unsaid, for a sentence that goes on: why the keychain
    /// gave no token, what to do about a token or an address that the backend does not know, or the status of
    /// an answer without a text. Absent when that is not what failed.
    [[nodiscard]] std::optional<std::string> unsaidReason(std::string_view message) const;

private:
    [[noreturn]] void refuse(Foundation::TaskEnd const& end, std::string const& whatWasNotDone,
                             std::string const& ifInterrupted) const;
    std::shared_ptr<Networking::AuthTokenProvider> tokenProvider(Invocation const& invocation);

    Composition::LiveBackendServices services;
    Foundation::URL baseURL;
    std::shared_ptr<WaitingLine> line;
    std::shared_ptr<Composition::KeychainTokenProvider> keychainTokens; ///< Null for a token that was given.
    std::optional<std::string> urlToLogInAt; ///< A word for a shell; absent for the backend that is known.
    std::shared_ptr<Meetings::RemoteEventRepositoryImpl> repository;
};

/// Throws CommandError for a run that a signal ended, with the code that shells expect.
[[noreturn]] void throwInterrupted(int signal, std::string const& message);

/// The text of an error, as another part of Quillora words it.
std::string messageOf(std::exception_ptr const& error);

} // namespace Companion
