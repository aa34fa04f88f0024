#include "Tests/SessionBus/BusAtAPath.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <unistd.h>

namespace {

std::filesystem::path newFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "quillora-bus-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder for a bus");
    return pattern;
}

} // namespace

BusAtAPath::BusAtAPath() : folder(newFolder()) {
    begin();
}

BusAtAPath::~BusAtAPath() {
    daemon.reset();
    std::filesystem::remove_all(folder);
}

std::string BusAtAPath::address() const {
    return "unix:path=" + (folder / "bus").native();
}

void BusAtAPath::end() {
    daemon->signal(SIGKILL);
    daemon->wait();
    daemon.reset();
    std::filesystem::remove(folder / "bus");
}

void BusAtAPath::begin() {
    daemon = std::make_unique<ChildProcess>(std::vector<std::string>{"dbus-daemon", "--session", "--nofork",
                                                                     "--print-address=3",
                                                                     "--address=" + address()},
                                            ChildProcess::Environment{{"PATH", std::getenv("PATH")}});
    if (!daemon->readLine()) throw std::runtime_error("no bus: " + daemon->errorText());
}
