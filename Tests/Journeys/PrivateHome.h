#pragma once

#include "ProgramRunner.h"

#include "Foundation/JSON.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A person's home of the test's own, with the companion program to run in it. No bus, no display, no
/// journal setting; Europe/Berlin, plain English.
class PrivateHome {
public:
    PrivateHome();
    ~PrivateHome();
    PrivateHome(PrivateHome const&) = delete;
    PrivateHome& operator=(PrivateHome const&) = delete;

    /// Runs `quillora` with these words.
    [[nodiscard]] ProgramResult quillora(std::vector<std::string> words) const;

    /// The same, with more said about how.
    [[nodiscard]] ProgramResult quillora(std::vector<std::string> words, ProgramRun::Output output,
                                         std::string input = {}) const;
    /// On a terminal, where it is given the input once it has asked `question` and `meanwhile` is done.
    [[nodiscard]] ProgramResult quilloraAsked(std::vector<std::string> words, std::string question,
                                              std::string input, std::function<void()> meanwhile = {}) const;
    [[nodiscard]] ProgramResult quilloraWithoutOverride(std::vector<std::string> words) const;

    /// Runs it, expects exit code 0 and yields its output.
    [[nodiscard]] std::string outputOf(std::vector<std::string> words) const;

    /// Runs `day` with `--json` and yields the document. Expects exit code 0.
    [[nodiscard]] Foundation::JSON::Value dayJSON(std::vector<std::string> words) const;

    /// `setup --yes` with the keychain of files, since no keyring runs, and a source titled "Cal" at
    /// `calendars()`. Expects both to succeed.
    void setUp() const;

    [[nodiscard]] std::filesystem::path folder() const { return root; }
    [[nodiscard]] std::filesystem::path calendars() const { return root / "calendars"; }
    [[nodiscard]] std::filesystem::path configuration() const { return root / "config" / "quillora"; }
    [[nodiscard]] std::filesystem::path container() const { return root / "data" / "group.quillora"; }

    /// Writes a file and the folders above it.
    void write(std::filesystem::path const& path, std::string_view content) const;
    [[nodiscard]] std::string contentOf(std::filesystem::path const& path) const;

    /// Every file and folder below with its content, to see that nothing changed. The cache is left out: what
    /// is in it may come and go at any look.
    [[nodiscard]] std::map<std::string, std::string> snapshot() const;

    std::map<std::string, std::string> environment;

private:
    std::filesystem::path root;
};

/// Copies the companion program, with what it becomes for most commands, below `prefix`.
void copyProgram(std::filesystem::path const& prefix);

/// A calendar file of these components.
std::string calendarFile(std::string_view components);

/// One event; times as an iCalendar property's parameters and value, such as ":20260311T080000Z".
std::string event(std::string_view uid, std::string_view title, std::string_view start, std::string_view end,
                  std::string_view more = {});

/// The names of the meets of a day, in order.
std::vector<std::string> meetNames(Foundation::JSON::Value const& day);
