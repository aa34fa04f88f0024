#include "Platform/URLSession/CurlURLSession.h"

#include "Platform/URLSession/CurlLoop.h"

#include <boost/asio/associated_cancellation_slot.hpp>
#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <map>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace Platform {

namespace asio = boost::asio;

namespace {

bool isSafeHeaderText(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

URLResponse received(CurlOutcome outcome) {
    if (outcome.error) std::rethrow_exception(outcome.error);
    return std::move(outcome.response);
}

// Hands an outcome to the task that awaits it, on that task's own executor.
template <typename Handler>
class TaskResumption {
public:
    explicit TaskResumption(Handler handler)
        : slot(asio::get_associated_cancellation_slot(handler)),
          work(asio::make_work_guard(handler)),
          handler(std::move(handler)) {}

    void operator()(CurlOutcome outcome, Resumption resumption) {
        auto const executor = work.get_executor();
        auto resume = [slot = slot, work = std::move(work), handler = std::move(handler),
                       outcome = std::move(outcome)]() mutable {
            if (slot.is_connected()) slot.clear();
            handler(outcome.error, std::move(outcome.response));
        };
        if (resumption == Resumption::now) {
            asio::dispatch(executor, std::move(resume));
        } else {
            asio::post(executor, std::move(resume));
        }
    }

private:
    asio::associated_cancellation_slot_t<Handler> slot;
    asio::executor_work_guard<asio::associated_executor_t<Handler>> work;
    Handler handler;
};

} // namespace

// What the loops of a session share. It outlives the session while tasks await.
class CurlURLSession::Loops {
public:
    explicit Loops(CurlURLSessionLimits limits)
        : limits(limits),
          idleTransfers(std::make_shared<IdleCurlTransfers>(limits)) {}

    // An exchange that was started, and its outcome if that is there already.
    struct Started {
        std::shared_ptr<CurlLoop> loop;
        std::uint64_t identifier;
        std::optional<CurlOutcome> outcome;
    };

    Started start(asio::any_io_executor const& executor, URLRequest request) {
        auto loop = loopOf(executor);
        auto const identifier = newIdentifier();
        auto outcome = loop->submit(std::make_unique<CurlExchange>(identifier, std::move(request), limits));
        return {.loop = std::move(loop), .identifier = identifier, .outcome = std::move(outcome)};
    }

    void cancelAll() {
        std::map<asio::execution_context*, std::weak_ptr<CurlLoop>> known;
        {
            std::scoped_lock const lock(mutex);
            known.swap(loops);
        }
        for (auto const& [context, weak] : known)
            if (auto const alive = weak.lock()) alive->cancelAll();
    }

private:
    // One for all executors of a context: a strand is no loop of its own.
    std::shared_ptr<CurlLoop> loopOf(asio::any_io_executor const& executor) {
        auto& context = asio::query(executor, asio::execution::context);
        std::scoped_lock const lock(mutex);
        if (auto const alive = loops[&context].lock()) return alive;
        std::erase_if(loops, [](auto const& entry) { return entry.second.expired(); });
        auto made = std::make_shared<CurlLoop>(executor, idleTransfers);
        loops.insert_or_assign(&context, made);
        return made;
    }

    std::uint64_t newIdentifier() {
        std::scoped_lock const lock(mutex);
        return ++lastIdentifier;
    }

    CurlURLSessionLimits const limits;
    std::shared_ptr<IdleCurlTransfers> const idleTransfers;
    std::mutex mutex;
    std::map<asio::execution_context*, std::weak_ptr<CurlLoop>> loops;
    std::uint64_t lastIdentifier = 0;
};

CurlURLSession::CurlURLSession(CurlURLSessionLimits limits) : loops(std::make_shared<Loops>(limits)) {}

CurlURLSession::~CurlURLSession() {
    loops->cancelAll();
}

Foundation::Task<URLResponse> CurlURLSession::data(URLRequest request) {
    for (auto const& [name, value] : request.headers) {
        // A token with a line break would write headers of its own.
        bool const isSafe = isSafeHeaderText(name) && isSafeHeaderText(value);
        if (!isSafe) throw URLError(URLError::Case::badRequestHeader);
    }
    bool const isFile = request.url.absoluteString.starts_with("file:");
    if (isFile) co_return URLResponse{.statusCode = std::nullopt, .data = {}};

    auto const executor = co_await asio::this_coro::executor;
    auto started = loops->start(executor, std::move(request));
    // Without the loop's turn in between, where there is nothing to wait for.
    if (started.outcome) co_return received(*std::move(started.outcome));

    auto initiate = [](auto handler, Loops::Started* begun) {
        // Taken from the task, which would otherwise own what owns it.
        auto const loop = std::move(begun->loop);
        // Before it is awaited: from then on it may end on another thread of the loop at any moment.
        if (auto slot = asio::get_associated_cancellation_slot(handler); slot.is_connected()) {
            slot.assign(
                [weak = std::weak_ptr(loop), identifier = begun->identifier](asio::cancellation_type) {
                    if (auto const alive = weak.lock()) alive->cancel(identifier);
                });
        }
        loop->await(begun->identifier, TaskResumption(std::move(handler)));
    };
    using Signature = void(std::exception_ptr, URLResponse);
    URLResponse response = co_await asio::async_initiate<asio::use_awaitable_t<> const, Signature>(
        initiate, asio::use_awaitable, &started);
    co_return response;
}

} // namespace Platform
