#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/fsuid.h>
#include <unistd.h>

/// Lets the superuser's tests meet closed doors: on this thread files are opened as by an ordinary user, who
/// owns `folder` and all in it.
class OrdinaryUser {
public:
    explicit OrdinaryUser(std::filesystem::path const& folder) {
        if (::geteuid() != 0) return;
        constexpr uid_t nobody = 65534;
        EXPECT_EQ(::chown(folder.c_str(), nobody, nobody), 0);
        for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
            EXPECT_EQ(::lchown(entry.path().c_str(), nobody, nobody), 0);
        }
        ::setfsuid(nobody);
    }
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;
    ~OrdinaryUser() {
        if (::geteuid() == 0) ::setfsuid(0);
    }

    /// The call yields the user before it, which an impossible one does not change.
    [[nodiscard]] bool isBoundByModes() const { return ::setfsuid(static_cast<uid_t>(-1)) != 0; }
};
