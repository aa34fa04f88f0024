#pragma once

#include "Platform/NotificationCenter/LocalNotificationCenter.h"

#include <mutex>
#include <utility>
#include <vector>

namespace Platform {

/// Works like the process's own centre and keeps the names that were posted.
class RecordingNotificationCenter final : public NotificationCenter {
public:
    void post(std::string_view name) override {
        {
            std::lock_guard const lock(mutex);
            names.emplace_back(name);
        }
        center.post(name);
    }

    [[nodiscard]] std::unique_ptr<Observation> observe(std::string name,
                                                       std::function<void()> observer) override {
        return center.observe(std::move(name), std::move(observer));
    }

    /// Every posted name, in order.
    [[nodiscard]] std::vector<std::string> posted() const {
        std::lock_guard const lock(mutex);
        return names;
    }

private:
    LocalNotificationCenter center;
    mutable std::mutex mutex;
    std::vector<std::string> names;
};

} // namespace Platform
