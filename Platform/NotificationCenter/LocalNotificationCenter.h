#pragma once

#include "Platform/NotificationCenter/NotificationCenter.h"

namespace Platform {

/// The notification centre of this process. May be used from any thread. Once an observation has gone its
/// observer is neither called nor still running on another thread; an observer may end its own observation,
/// post, and observe.
class LocalNotificationCenter final : public NotificationCenter {
public:
    LocalNotificationCenter();
    ~LocalNotificationCenter() override;

    void post(std::string_view name) override;
    [[nodiscard]] std::unique_ptr<Observation> observe(std::string name,
                                                       std::function<void()> observer) override;

private:
    struct Observers;
    class LocalObservation;
    // Shared with the observations, which may outlive the centre.
    std::shared_ptr<Observers> observers;
};

} // namespace Platform
