#pragma once

#include <atomic>
#include <memory>
#include <string>

/// A login service on a private bus, with one session. It answers on a thread of its own.
class StubLogin {
public:
    enum class Sessions { one, none };

    explicit StubLogin(std::string const& busAddress, Sessions sessions = Sessions::one,
                       bool isLockedFromTheStart = false);
    StubLogin(StubLogin const&) = delete;
    StubLogin& operator=(StubLogin const&) = delete;
    ~StubLogin();

    /// The session becomes locked or unlocked, and says so.
    void setLocked(bool isLockedNow);

    /// Something else of the session changes.
    void becomeIdle();

private:
    struct Service;
    std::unique_ptr<Service> service;
};
