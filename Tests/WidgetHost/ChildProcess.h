#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

/// A program that a test started. It is ended with the object.
class ChildProcess {
public:
    using Environment = std::map<std::string, std::string>;

    /// Starts `words` with nothing but `environment`. Its standard output is read here; `-displayfd` and the
    /// like find a pipe to this object at descriptor 3, too.
    ChildProcess(std::vector<std::string> const& words, Environment const& environment);
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;
    ~ChildProcess();

    /// The next line that it prints, without its end; absent when it ends or says nothing for 20 seconds.
    std::optional<std::string> readLine();

    void signal(int number) const;

    /// Waits for its end, 20 seconds at most. The exit code; absent when it did not end by itself.
    std::optional<int> wait();

    /// What it wrote on standard error; complete after wait().
    [[nodiscard]] std::string errorText() const;

private:
    pid_t process = -1;
    int output = -1;
    int errors = -1; // An unnamed file, so that nobody has to read while it runs.
    std::string unread;
};
