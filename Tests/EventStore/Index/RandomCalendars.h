#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// Calendars as nobody would keep them: every kind of event and rule, versions and overrides of one event in
/// several files, times on many clocks. Equal seeds give equal bytes.
class RandomCalendars {
public:
    explicit RandomCalendars(std::uint64_t seed) : numbers(seed) {}

    struct File {
        std::string name;
        std::string content;
    };
    std::vector<File> files(int count);

    /// The content of one file.
    std::string content();

private:
    int below(int limit);
    bool chance(int percent) { return below(100) < percent; }
    std::string oneOf(std::vector<std::string> const& texts);
    std::string uid();
    std::string event(std::string const& uid);
    std::string overrideOf(std::string const& uid);
    std::string time(std::string const& name, int day);
    std::string rule();

    std::mt19937_64 numbers;
    std::vector<std::string> uids; // Of the events made so far.
    int madeEvents = 0;
};
