// Measures the calendar store beside its floors, in rounds that take turns, and prints the median of each in
// milliseconds: calendar_store WHAT ROOT CACHE ROUNDS
//   verified    a bare stat of every file, and a new store's answer that looks at them first
//   changed     the same when one file has changed since
//   unverified  a new store's answer from what its index knows
//   resident    the same store's next answer
//   build       a bare reading of every file, and a new store's answer without any index
// The question is always the day 2026-03-11 in Europe/Berlin. ROOT is a folder of calendar folders.

#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/Clock/SystemClock.h"
#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/GivenConsentPrompt.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace Platform;

double millisecondsOf(std::function<void()> const& work) {
    auto const begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

// Calls `visit` with the descriptor of each calendar folder and the name of each file in it.
void forEachFile(std::string const& root, std::function<void(int, char const*)> const& visit) {
    for (auto const& folder : std::filesystem::directory_iterator(root)) {
        DIR* const directory = ::opendir(folder.path().c_str());
        if (directory == nullptr) continue;
        while (auto const* entry = ::readdir(directory)) {
            if (entry->d_name[0] != '.') visit(::dirfd(directory), entry->d_name);
        }
        ::closedir(directory);
    }
}

void statAll(std::string const& root) {
    forEachFile(root, [](int folder, char const* name) {
        struct stat status{};
        if (::fstatat(folder, name, &status, 0) != 0) std::perror(name);
    });
}

void readAll(std::string const& root) {
    std::vector<char> buffer(64 * 1024);
    forEachFile(root, [&](int folder, char const* name) {
        int const file = ::openat(folder, name, O_RDONLY | O_CLOEXEC);
        while (file >= 0 && ::read(file, buffer.data(), buffer.size()) > 0) {
        }
        ::close(file);
    });
}

class Stores {
public:
    Stores(std::filesystem::path const& root, std::filesystem::path const& cache) : cache(cache) {
        std::filesystem::create_directories(cache);
        CalendarStoreConfiguration const configuration(cache / "config", files);
        if (!configuration.load().roots.empty()) return; // Of the measurement before, with an index to use.
        if (auto const added = configuration.add(root, "Bench"); !added)
            std::fprintf(stderr, "%s\n", added.error().c_str());
    }

    std::unique_ptr<FolderEventStore> make(bool isResident) const {
        return std::make_unique<FolderEventStore>(FolderEventStoreParts{
            .places = {.configurationDirectory = cache / "config",
                       .nativeCalendar = cache / "native",
                       .indexDirectory = cache / "index"},
            .files = files,
            .region = std::make_shared<FixedRegionSettings>(
                Foundation::Calendar(Foundation::TimeZone::named("Europe/Berlin").value()),
                Foundation::Locale{.identifier = "en"}),
            .fileSystemClock = std::make_shared<SystemClock>(),
            .prompt = std::make_shared<GivenConsentPrompt>(ConsentAnswer::yes),
            .logger = Logger(std::make_shared<RecordingLogSink>(), "benchmark", "store"),
            .onDifference = isResident ? [] {} : std::function<void()>(),
        });
    }

    void removeIndexes() const { std::filesystem::remove_all(cache / "index"); }

private:
    std::filesystem::path cache;
    std::shared_ptr<FileManager const> files = std::make_shared<PosixFileManager>(Foundation::Environment());
};

std::size_t eventsOfTheDay(FolderEventStore& store) {
    constexpr double dayStart = 1773183600; // 2026-03-11 in Berlin
    return store.eventsMatching({.start = {dayStart}, .end = {dayStart + 86400}, .calendars = std::nullopt})
        .size();
}

// Of the first file, in place; its size and what it says stay, its time does not.
void changeOneFile(std::string const& root) {
    for (auto const& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (entry.path().extension() != ".ics") continue;
        std::fstream file(entry.path(), std::ios::in | std::ios::out | std::ios::binary);
        char const first = static_cast<char>(file.get());
        file.seekp(0);
        file.put(first);
        return;
    }
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("calendar_store WHAT ROOT CACHE ROUNDS\n", stderr);
        return 2;
    }
    std::string_view const what = argv[1];
    std::string const root = argv[2];
    Stores const stores(root, argv[3]);
    int const rounds = std::max(1, std::atoi(argv[4]));

    std::size_t events = eventsOfTheDay(*stores.make(false));
    auto const resident = stores.make(true);
    eventsOfTheDay(*resident);
    resident->awaitVerification();
    std::vector<double> floors;
    std::vector<double> answers;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        if (what == "build") stores.removeIndexes();
        if (what == "changed") changeOneFile(root);
        floors.push_back(millisecondsOf([&] {
            if (what == "build") {
                readAll(root);
            } else if (what == "verified" || what == "changed") {
                statAll(root);
            }
        }));
        std::unique_ptr<FolderEventStore> fresh;
        answers.push_back(millisecondsOf([&] {
            if (what != "resident") fresh = stores.make(what == "unverified");
            events = eventsOfTheDay(what == "resident" ? *resident : *fresh);
        }));
        ratios.push_back(answers.back() / floors.back());
        fresh.reset(); // Ends a look that goes on.
    }
    std::printf("floor %.3f ms, answer %.3f ms, ratio %.3f, %zu events\n", median(floors), median(answers),
                median(ratios), events);
    return 0;
}
