#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Platform {

/// Announcements by name inside one process. Observers run on the thread that posts.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    /// Ends the observation when it goes away.
    class Observation {
    public:
        virtual ~Observation() = default;
    };

    /// Calls every observer of `name` before it returns. There is no sender and no further information.
    virtual void post(std::string_view name) = 0;

    [[nodiscard]] virtual std::unique_ptr<Observation> observe(std::string name,
                                                               std::function<void()> observer) = 0;
};

} // namespace Platform
