#include "Foundation/InterruptibleTask.h"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <csignal>

namespace Foundation {
namespace {

namespace asio = boost::asio;

bool isIgnored(int signal) {
    struct sigaction present = {};
    ::sigaction(signal, nullptr, &present);
    return present.sa_handler == SIG_IGN;
}

// One run; everything in it happens on the loop's one thread.
class Run {
public:
    explicit Run(std::function<void(std::chrono::seconds)> everySecond)
        : everySecond(std::move(everySecond)),
          signals(context),
          timer(context) {}

    TaskEnd toItsEnd(Task<void> task) {
        awaitSignals();
        began = std::chrono::steady_clock::now();
        awaitSecond(std::chrono::seconds(1));
        asio::co_spawn(context, std::move(task),
                       asio::bind_cancellation_slot(cancellation.slot(), [this](std::exception_ptr error) {
                           end.error = std::move(error);
                           signals.cancel();
                           timer.cancel();
                       }));
        context.run();
        return std::move(end);
    }

private:
    void awaitSignals() {
        for (int const signal : {SIGINT, SIGTERM})
            if (!isIgnored(signal)) signals.add(signal);
        signals.async_wait([this](boost::system::error_code const& error, int signal) {
            if (error) return;
            end.signal = signal;
            // What comes next is the system's again: a person who presses twice wants out at once.
            signals.clear();
            cancellation.emit(asio::cancellation_type::terminal);
        });
    }

    void awaitSecond(std::chrono::seconds count) {
        timer.expires_at(began + count);
        timer.async_wait([this, count](boost::system::error_code const& error) {
            if (error) return;
            if (everySecond) everySecond(count);
            awaitSecond(count + std::chrono::seconds(1));
        });
    }

    std::function<void(std::chrono::seconds)> everySecond;
    asio::io_context context{1};
    asio::signal_set signals;
    asio::steady_timer timer;
    asio::cancellation_signal cancellation;
    std::chrono::steady_clock::time_point began;
    TaskEnd end;
};

} // namespace

TaskEnd runInterruptibly(Task<void> task, std::function<void(std::chrono::seconds)> everySecond) {
    Run run(std::move(everySecond));
    return run.toItsEnd(std::move(task));
}

} // namespace Foundation
