#pragma once

#include "Tests/Platform/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A program of a test's own that is found in place of a real one. It writes the words that it is given, each
/// on a line in angle brackets, to a file beside it, and then does what `body` says in the language of sh.
inline void placeStandIn(TemporaryFolder const& folder, std::string const& name,
                         std::string const& body = "exit 0") {
    auto const record = (folder.path() / (name + ".words")).string();
    auto const program = folder.place(name, "#!/bin/sh\nfor word in \"$@\"; do printf '<%s>\\n' \"$word\"; "
                                            "done >> '" +
                                                record + "'\n" + body + "\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
}

/// What a stand-in was given so far; empty when it was never run.
inline std::string wordsGivenTo(TemporaryFolder const& folder, std::string const& name) {
    std::ifstream file(folder.path() / (name + ".words"));
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
