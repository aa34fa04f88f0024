#include "Tests/Backend/BackendProcess.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string firstLine(int descriptor) {
    std::string line;
    char byte = 0;
    while (::read(descriptor, &byte, 1) == 1 && byte != '\n')
        line += byte;
    return line;
}

} // namespace

BackendProcess::BackendProcess(std::vector<std::string> options) {
    std::string pattern = std::filesystem::temp_directory_path() / "quillora-backend-XXXXXX";
    folder = ::mkdtemp(pattern.data());
    std::vector<std::string> words = {QUILLORA_BACKEND_EXECUTABLE, "--token-file", folder / "token"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (auto& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe to the backend");
    process = ::fork();
    if (process == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    base = firstLine(ends[0]);
    ::close(ends[0]);
    if (base.empty()) throw std::runtime_error("the backend did not start");
}

BackendProcess::~BackendProcess() {
    ::kill(process, SIGTERM);
    ::waitpid(process, nullptr, 0);
    std::filesystem::remove_all(folder);
}

std::string BackendProcess::token() const {
    std::ifstream stream(folder / "token");
    std::string text;
    std::getline(stream, text);
    return text;
}
