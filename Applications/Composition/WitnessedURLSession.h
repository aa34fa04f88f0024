#pragma once

#include "Platform/URLSession/URLSession.h"

#include <memory>
#include <optional>

namespace Composition {

/// A session that remembers what came of the last request, for who has to tell a person. It is for a program
/// that sends one request after another.
class WitnessedURLSession final : public Platform::URLSession {
public:
    explicit WitnessedURLSession(std::shared_ptr<Platform::URLSession> session);

    Foundation::Task<Platform::URLResponse> data(Platform::URLRequest request) override;

    /// Whether the last request was to change something, and the server may have done so: it said that it
    /// had or that it broke down over it, or its answer was lost.
    [[nodiscard]] bool mayHaveChangedSomething() const { return mayHaveChanged; }

    /// The status of the last answer; absent when there was none.
    [[nodiscard]] std::optional<std::int64_t> lastStatus() const { return status; }

private:
    std::shared_ptr<Platform::URLSession> session;
    bool mayHaveChanged = false;
    std::optional<std::int64_t> status;
};

} // namespace Composition
