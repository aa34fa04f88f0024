#include "Platform/URLSession/CurlLoop.h"

#include <array>
#include <utility>

namespace Platform {

namespace asio = boost::asio;

// One of the library's sockets. The library opens and closes it.
class CurlLoop::Watch final {
public:
    Watch(asio::any_io_executor const& executor, curl_socket_t socket)
        : socket(socket),
          descriptor(executor) {
        descriptor.assign(socket, failure);
    }
    ~Watch() { end(); }

    Watch(Watch const&) = delete;
    Watch& operator=(Watch const&) = delete;

    void end() {
        // Released, since closing it is the library's part.
        if (descriptor.is_open()) descriptor.release();
    }

    [[nodiscard]] bool wants(Direction direction) const {
        int const bit = direction == Direction::reading ? CURL_POLL_IN : CURL_POLL_OUT;
        return (wanted & bit) != 0;
    }

    curl_socket_t const socket;
    boost::system::error_code failure;
    asio::posix::stream_descriptor descriptor;
    int wanted = CURL_POLL_NONE;
    std::array<bool, 2> isAwaited = {false, false};
};

CurlLoop::CurlLoop(asio::any_io_executor executor, std::shared_ptr<IdleCurlTransfers> idleTransfers)
    : executor(std::move(executor)),
      idleTransfers(std::move(idleTransfers)),
      timer(this->executor) {}

CurlLoop::~CurlLoop() {
    if (!transfers) return;
    // The loop has gone while exchanges ran: nobody awaits them any more.
    curl_multi_setopt(transfers->multi(), CURLMOPT_SOCKETFUNCTION, nullptr);
    curl_multi_setopt(transfers->multi(), CURLMOPT_TIMERFUNCTION, nullptr);
    for (auto const& [identifier, exchange] : exchanges)
        curl_multi_remove_handle(transfers->multi(), exchange->handle.get());
}

template <typename Work>
void CurlLoop::locked(Resumption resumption, Work work) {
    std::vector<Finished> ended;
    {
        std::scoped_lock const lock(mutex);
        work();
        ended.swap(finished);
    }
    for (auto& [completion, outcome] : ended)
        completion(std::move(outcome), resumption);
}

std::optional<CurlOutcome> CurlLoop::submit(std::unique_ptr<CurlExchange> exchange) {
    auto const identifier = exchange->identifier;
    std::optional<CurlOutcome> outcome;
    locked(Resumption::later, [&] {
        begin(std::move(exchange));
        if (auto node = unclaimed.extract(identifier)) outcome = std::move(node.mapped());
    });
    return outcome;
}

void CurlLoop::await(std::uint64_t identifier, CurlCompletion completion) {
    locked(Resumption::later, [&] {
        if (auto node = unclaimed.extract(identifier)) {
            finished.push_back({std::move(completion), std::move(node.mapped())});
        } else {
            exchanges.at(identifier)->completion = std::move(completion);
        }
    });
}

void CurlLoop::cancel(std::uint64_t identifier) {
    locked(Resumption::later, [&] {
        finish(identifier, curlFailure(URLError::Case::cancelled));
        if (transfers) act(CURL_SOCKET_TIMEOUT, 0);
    });
}

void CurlLoop::cancelAll() {
    locked(Resumption::later, [&] {
        finishAll(URLError::Case::cancelled);
        rest();
    });
}

void CurlLoop::begin(std::unique_ptr<CurlExchange> exchange) {
    if (!transfers) connect();
    auto handle = transfers->takeHandle();
    bool const isAdded = [&] {
        if (!handle) return false;
        exchange->prepare(std::move(handle));
        return curl_multi_add_handle(transfers->multi(), exchange->handle.get()) == CURLM_OK;
    }();
    auto const identifier = exchange->identifier;
    if (isAdded) {
        exchanges.emplace(identifier, std::move(exchange));
    } else {
        unclaimed.emplace(identifier, curlFailure(URLError::Case::unknown));
    }
    act(CURL_SOCKET_TIMEOUT, 0);
}

void CurlLoop::finish(std::uint64_t identifier, CurlOutcome outcome) {
    auto node = exchanges.extract(identifier);
    // A cancellation that comes after the end finds nothing.
    if (node.empty()) return;
    auto& exchange = node.mapped();
    curl_multi_remove_handle(transfers->multi(), exchange->handle.get());
    transfers->giveBack(std::move(exchange->handle));
    if (exchange->completion) {
        finished.push_back({std::move(exchange->completion), std::move(outcome)});
    } else {
        unclaimed.emplace(identifier, std::move(outcome));
    }
}

void CurlLoop::finishAll(URLError::Case errorCase) {
    while (!exchanges.empty())
        finish(exchanges.begin()->first, curlFailure(errorCase));
}

// Lets the library do what is due, at a socket or in general.
void CurlLoop::act(curl_socket_t socket, int events) {
    // The library asks for a further round by a deadline of zero. After some rounds the other tasks of the
    // loop have their turn: a server that sends without end must not hold them up.
    constexpr int mostRounds = 8;
    int running = 0;
    CURLMcode code = CURLM_OK;
    for (int round = 0; round < mostRounds && code == CURLM_OK && (round == 0 || isDueNow); ++round) {
        isDueNow = false;
        code = curl_multi_socket_action(transfers->multi(), socket, events, &running);
        socket = CURL_SOCKET_TIMEOUT;
        events = 0;
    }
    collectFinished();
    if (code != CURLM_OK) finishAll(URLError::Case::unknown);
    if (exchanges.empty()) {
        rest();
    } else {
        awaitDeadline();
    }
}

void CurlLoop::collectFinished() {
    int remaining = 0;
    while (CURLMsg const* message = curl_multi_info_read(transfers->multi(), &remaining)) {
        if (message->msg != CURLMSG_DONE) continue;
        auto& exchange = CurlExchange::of(message->easy_handle);
        auto outcome = exchange.outcome(message->data.result);
        finish(exchange.identifier, std::move(outcome));
    }
}

void CurlLoop::connect() {
    transfers = idleTransfers->take();
    curl_multi_setopt(transfers->multi(), CURLMOPT_SOCKETFUNCTION, &socketChanged);
    curl_multi_setopt(transfers->multi(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(transfers->multi(), CURLMOPT_TIMERFUNCTION, &deadlineChanged);
    curl_multi_setopt(transfers->multi(), CURLMOPT_TIMERDATA, this);
}

// Nothing runs: the loop must find nothing to wait for, or it would not end.
void CurlLoop::rest() {
    if (!transfers) return;
    ++lastWait;
    awaited.reset();
    deadline.reset();
    isDueNow = false;
    timer.cancel();
    curl_multi_setopt(transfers->multi(), CURLMOPT_SOCKETFUNCTION, nullptr);
    curl_multi_setopt(transfers->multi(), CURLMOPT_TIMERFUNCTION, nullptr);
    // A socket that the library still wants watched would not be named to the next loop.
    bool const isReusable = watches.empty();
    for (auto const& [socket, watched] : watches)
        watched->end();
    watches.clear();
    if (isReusable) idleTransfers->giveBack(std::move(transfers));
    transfers.reset();
}

int CurlLoop::socketChanged(CURL*, curl_socket_t socket, int wanted, void* context, void*) {
    return static_cast<CurlLoop*>(context)->watch(socket, wanted);
}

// Called by the library within its other calls, so that the lock is held. A socket that cannot be watched
// ends all exchanges by the -1.
int CurlLoop::watch(curl_socket_t socket, int wanted) {
    if (wanted == CURL_POLL_REMOVE) {
        auto const node = watches.extract(socket);
        if (node) node.mapped()->end();
        return 0;
    }
    auto& watched = watches[socket];
    if (!watched) watched = std::make_shared<Watch>(executor, socket);
    if (watched->failure) return -1;
    watched->wanted = wanted;
    awaitSocket(watched, Direction::reading);
    awaitSocket(watched, Direction::writing);
    return 0;
}

void CurlLoop::awaitSocket(std::shared_ptr<Watch> const& watched, Direction direction) {
    auto& isAwaited = watched->isAwaited[static_cast<std::size_t>(direction)];
    if (isAwaited || !watched->wants(direction)) return;
    isAwaited = true;
    auto const kind = direction == Direction::reading ? asio::posix::stream_descriptor::wait_read
                                                      : asio::posix::stream_descriptor::wait_write;
    watched->descriptor.async_wait(
        kind, [self = shared_from_this(), watched, direction](boost::system::error_code const& error) {
            self->locked(Resumption::now,
                         [&] { self->socketIsReady(watched, direction, static_cast<bool>(error)); });
        });
}

void CurlLoop::socketIsReady(std::shared_ptr<Watch> const& watched, Direction direction, bool hasFailed) {
    watched->isAwaited[static_cast<std::size_t>(direction)] = false;
    if (!watched->descriptor.is_open() || !watched->wants(direction)) return;
    int const ready = direction == Direction::reading ? CURL_CSELECT_IN : CURL_CSELECT_OUT;
    act(watched->socket, hasFailed ? CURL_CSELECT_ERR : ready);
    // Whether it is still wanted is known only now.
    if (watched->descriptor.is_open()) awaitSocket(watched, direction);
}

int CurlLoop::deadlineChanged(CURLM*, long milliseconds, void* context) {
    auto& self = *static_cast<CurlLoop*>(context);
    self.isDueNow = milliseconds == 0;
    self.deadline.reset();
    if (milliseconds >= 0) self.deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    return 0;
}

// Keeps one wait in the loop as long as exchanges run: it owns this object.
void CurlLoop::awaitDeadline() {
    auto const next = deadline.value_or(Clock::now() + std::chrono::hours(1));
    // A wait that ends too early looks again; most deadlines only move further away.
    if (awaited && *awaited <= next) return;
    awaited = next;
    timer.expires_at(next);
    timer.async_wait([self = shared_from_this(), wait = ++lastWait](boost::system::error_code const&) {
        self->locked(Resumption::now, [&] { self->deadlineHasCome(wait); });
    });
}

void CurlLoop::deadlineHasCome(std::uint64_t wait) {
    // Another wait has taken its place, or nothing runs any more.
    if (wait != lastWait) return;
    awaited.reset();
    if (deadline && *deadline <= Clock::now()) {
        act(CURL_SOCKET_TIMEOUT, 0);
    } else {
        awaitDeadline();
    }
}

} // namespace Platform
