#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

/// The real quillora-backend, started for one test on a port of the system's choice and ended with it.
class BackendProcess {
public:
    explicit BackendProcess(std::vector<std::string> options = {});
    ~BackendProcess();

    BackendProcess(BackendProcess const&) = delete;
    BackendProcess& operator=(BackendProcess const&) = delete;

    [[nodiscard]] std::string const& baseURL() const { return base; }
    [[nodiscard]] std::string token() const;

private:
    std::filesystem::path folder;
    pid_t process = 0;
    std::string base;
};
