#pragma once

#include <filesystem>
#include <stdexcept>

#include <unistd.h>

/// While it stands, a test that runs as root is bound by permissions like anybody else, and owns the folder.
class OrdinaryUser {
public:
    explicit OrdinaryUser(std::filesystem::path const& folder) {
        if (!wasRoot) return;
        constexpr uid_t nobody = 65534;
        if (::chown(folder.c_str(), nobody, nobody) != 0 || ::seteuid(nobody) != 0) {
            throw std::runtime_error("root cannot become an ordinary user here");
        }
    }
    ~OrdinaryUser() {
        if (wasRoot && ::seteuid(0) != 0) ::_exit(1);
    }
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;

private:
    bool wasRoot = ::geteuid() == 0;
};
