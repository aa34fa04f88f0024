#include "Applications/Composition/KeychainTokenProvider.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <optional>
#include <system_error>
#include <utility>

namespace Composition {

namespace asio = boost::asio;

namespace {

using Found = std::expected<std::string, Platform::KeychainStatus>;

// Where the asking thread leaves what it found for the task that waits. The thread may be late, even later
// than the task's loop lives: whatever it does with that loop, it does with the lock held and only while the
// task waits, and the bell, which belongs to the loop, goes as the task closes the mailbox.
class Mailbox {
public:
    explicit Mailbox(asio::any_io_executor const& executor)
        : bell(std::in_place, executor, asio::steady_timer::time_point::max()) {}

    void deliver(std::shared_ptr<Mailbox> const& self, Found found) {
        std::scoped_lock const lock(mutex);
        if (!bell) return;
        content = std::move(found);
        // The timer belongs to the task's executor. Set to the past, it rings also for a wait yet to begin.
        asio::post(bell->get_executor(), [self] { self->ring(); });
    }

    std::optional<Found> close() {
        std::scoped_lock const lock(mutex);
        bell.reset();
        return std::exchange(content, std::nullopt);
    }

    /// On the task's loop, before the mailbox is closed.
    auto wait() { return bell->async_wait(asio::as_tuple(asio::use_awaitable)); }

private:
    void ring() {
        if (bell) bell->expires_at(asio::steady_timer::time_point::min());
    }

    std::optional<asio::steady_timer> bell; // Absent once the mailbox is closed.
    std::mutex mutex;
    std::optional<Found> content;
};

// Closes the mailbox also when the waiting task is dropped.
struct OpenMailbox {
    std::shared_ptr<Mailbox> mailbox;
    ~OpenMailbox() { mailbox->close(); }
};

} // namespace

class KeychainTokenProvider::Asking {
public:
    Asking(BackendTokens tokens, Foundation::URL backend)
        : tokens(std::move(tokens)),
          backend(std::move(backend)) {}
    ~Asking() {
        tokens.giveUp();
        thread.join();
    }
    Asking(Asking const&) = delete;
    Asking& operator=(Asking const&) = delete;

    void ask(std::shared_ptr<Mailbox> mailbox) {
        asio::post(thread, [this, mailbox = std::move(mailbox)] {
            auto found = tokens.find(backend);
            {
                std::scoped_lock const lock(mutex);
                lastFailure = found ? std::nullopt : std::optional(found.error());
            }
            mailbox->deliver(mailbox, std::move(found));
        });
    }

    std::optional<Platform::KeychainStatus> failure() {
        std::scoped_lock const lock(mutex);
        return lastFailure;
    }

private:
    BackendTokens const tokens;
    Foundation::URL const backend;
    std::mutex mutex;
    std::optional<Platform::KeychainStatus> lastFailure;
    asio::thread_pool thread{1};
};

KeychainTokenProvider::KeychainTokenProvider(BackendTokens tokens, Foundation::URL backend)
    : asking(std::make_shared<Asking>(std::move(tokens), std::move(backend))) {}

KeychainTokenProvider::~KeychainTokenProvider() = default;

Foundation::Task<std::string> KeychainTokenProvider::token() {
    auto const executor = co_await asio::this_coro::executor;
    OpenMailbox const open{.mailbox = std::make_shared<Mailbox>(executor)};
    asking->ask(open.mailbox);
    // Whether the thread rang the bell or the task was cancelled, the mailbox tells.
    auto const rung = co_await open.mailbox->wait();
    static_cast<void>(rung);
    auto found = open.mailbox->close();
    if (!found) throw std::system_error(std::make_error_code(std::errc::operation_canceled));
    if (!*found) throw std::system_error(std::make_error_code(std::errc::permission_denied));
    co_return **std::move(found);
}

std::optional<Platform::KeychainStatus> KeychainTokenProvider::failure() const {
    return asking->failure();
}

} // namespace Composition
