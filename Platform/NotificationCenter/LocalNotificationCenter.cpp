#include "Platform/NotificationCenter/LocalNotificationCenter.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace Platform {
namespace {

struct Observer {
    std::string name;
    // Held during a call, so that the end of an observation waits for it. Recursive: the observer may be what
    // ends it.
    std::recursive_mutex running;
    std::function<void()> call;
    bool isActive = true;
};

} // namespace

struct LocalNotificationCenter::Observers {
    std::mutex mutex;
    std::vector<std::shared_ptr<Observer>> all;

    std::vector<std::shared_ptr<Observer>> of(std::string_view name) {
        std::lock_guard const lock(mutex);
        std::vector<std::shared_ptr<Observer>> found;
        std::ranges::copy_if(all, std::back_inserter(found),
                             [&](auto const& observer) { return observer->name == name; });
        return found;
    }

    void remove(std::shared_ptr<Observer> const& observer) {
        std::lock_guard const lock(mutex);
        std::erase(all, observer);
    }
};

class LocalNotificationCenter::LocalObservation final : public Observation {
public:
    LocalObservation(std::shared_ptr<Observers> observers, std::shared_ptr<Observer> observer)
        : observers(std::move(observers)),
          observer(std::move(observer)) {}

    ~LocalObservation() override {
        observers->remove(observer);
        std::lock_guard const lock(observer->running);
        observer->isActive = false;
    }

    LocalObservation(LocalObservation const&) = delete;
    LocalObservation& operator=(LocalObservation const&) = delete;

private:
    std::shared_ptr<Observers> observers;
    std::shared_ptr<Observer> observer;
};

LocalNotificationCenter::LocalNotificationCenter() : observers(std::make_shared<Observers>()) {}

LocalNotificationCenter::~LocalNotificationCenter() = default;

void LocalNotificationCenter::post(std::string_view name) {
    for (auto const& observer : observers->of(name)) {
        std::lock_guard const lock(observer->running);
        if (observer->isActive) observer->call();
    }
}

std::unique_ptr<NotificationCenter::Observation>
LocalNotificationCenter::observe(std::string name, std::function<void()> call) {
    auto observer = std::make_shared<Observer>();
    observer->name = std::move(name);
    observer->call = std::move(call);
    {
        std::lock_guard const lock(observers->mutex);
        observers->all.push_back(observer);
    }
    return std::make_unique<LocalObservation>(observers, std::move(observer));
}

} // namespace Platform
