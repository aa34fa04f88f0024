#include "Foundation/UUID.h"
#include "Samples/backend/BackendServer.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int wrongUse = 2;
constexpr int failed = 1;

int fail(int code, std::string const& message) {
    std::cerr << "quillora-backend: " << message << '\n';
    return code;
}

// The token in the file, or a new one written there with mode 0600.
std::optional<std::string> tokenFrom(std::string const& file) {
    if (std::ifstream stream(file); stream) {
        std::string token;
        std::getline(stream, token);
        return token.empty() ? std::nullopt : std::optional(token);
    }
    auto const token = Foundation::UUID::random().uuidString();
    int const descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) return std::nullopt;
    std::string const line = token + "\n";
    bool const isWritten = ::write(descriptor, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    bool const isClosed = ::close(descriptor) == 0;
    return isWritten && isClosed ? std::optional(token) : std::nullopt;
}

std::string joined(std::vector<std::string_view> const& names) {
    std::string text;
    for (auto const name : names)
        text += (text.empty() ? "" : ", ") + std::string(name);
    return text;
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);

    CLI::App app("A small events service to try Quillora's backend commands on. It listens on 127.0.0.1 and\n"
                 "prints its base URL on one line once it is ready.");
    std::uint16_t port = 0;
    std::string file;
    std::string tokenFile;
    std::string hostile;
    bool isReadOnly = false;
    app.add_option("--port", port, "The port; chosen by the system unless given");
    app.add_option("--file", file, "Keep the events in this JSON file; otherwise they go with the program");
    app.add_option("--token-file", tokenFile,
                   "The bearer token's file; made with a random token when missing")
        ->required();
    app.add_flag("--read-only", isReadOnly, "Answer every change with 403");
    app.add_option("--hostile", hostile,
                   "Misbehave: " + joined(Backend::HostileMode::names()) +
                       " (reset-at:N takes a byte count)");
    try {
        app.parse(argc, argv);
    } catch (CLI::CallForHelp const& help) {
        return app.exit(help);
    } catch (CLI::ParseError const& error) {
        return fail(wrongUse, error.what());
    }

    Backend::BackendServerOptions options{.port = port};
    if (!hostile.empty()) {
        options.hostileMode = Backend::HostileMode::fromText(hostile);
        if (!options.hostileMode) return fail(wrongUse, "--hostile does not know \"" + hostile + "\"");
    }
    auto const token = tokenFrom(tokenFile);
    if (!token) return fail(failed, "no token can be read from or written to " + tokenFile);
    auto archive =
        Backend::EventArchive::open(file.empty() ? std::nullopt : std::optional<std::filesystem::path>(file));
    if (!archive) return fail(failed, archive.error());

    Backend::EventEndpoint endpoint(std::move(*archive), *token,
                                    isReadOnly ? Backend::Access::readOnly : Backend::Access::readWrite,
                                    [] { return Foundation::UUID::random().uuidString(); });
    auto const refusal = Backend::serve(
        endpoint, options, [](std::string const& baseURL) { std::cout << baseURL << std::endl; });
    return refusal ? fail(failed, *refusal) : 0;
}
