// Measures what it takes to save one event in a folder of many: the store's change of a title, and the bare
// steps that every safe save has (write aside, sync, rename, sync the folder). Both in turn, since a disk's
// mood changes within a moment.
//
// Usage: quillora_bench_save_event FOLDER EVENTS TIMES      the median times, in microseconds

#include "Foundation/Environment.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/GivenConsentPrompt.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Platform;
using std::filesystem::path;

constexpr double noon = 1773230400; // 2026-03-11

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "quillora_bench_save_event: %s\n", what);
    std::exit(1);
}

// One event an hour, so that a day shows a few of however many.
void makeCalendar(path const& folder, int events) {
    if (std::filesystem::exists(folder)) return;
    std::filesystem::create_directories(folder);
    for (int number = 0; number < events; ++number) {
        auto const name = std::to_string(number);
        auto const hour = number % 24;
        auto const two = (hour < 10 ? "0" : "") + std::to_string(hour);
        auto const year = std::to_string(2026 - number / 24 % 20);
        std::ofstream(folder / (name + ".ics"), std::ios::binary)
            << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Benchmark//EN\r\nBEGIN:VEVENT\r\nUID:" << name
            << "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" << year << "0311T" << two
            << "0000Z\r\nDURATION:PT1H\r\n"
            << "SUMMARY:Event " << name << "\r\nDESCRIPTION:Some words that people write about an event.\r\n"
            << "END:VEVENT\r\nEND:VCALENDAR\r\n";
    }
}

class Store {
public:
    explicit Store(path const& home) : log(std::make_shared<RecordingLogSink>()) {
        auto const files = std::make_shared<PosixFileManager>(Foundation::Environment());
        CalendarStorePlaces const places{.configurationDirectory = home / "config",
                                         .nativeCalendar = home / "native"};
        // Known already in a second run over the same folder.
        static_cast<void>(CalendarStoreConfiguration(places.configurationDirectory, files)
                              .add(home / "Root", std::nullopt));
        store = std::make_unique<FolderEventStore>(FolderEventStoreParts{
            .places = places,
            .files = files,
            .region = std::make_shared<FixedRegionSettings>(Foundation::Calendar(Foundation::TimeZone::utc()),
                                                            Foundation::Locale{.identifier = "en"}),
            .fileSystemClock = std::make_shared<FixedClock>(Foundation::Date{4e9}),
            .prompt = std::make_shared<GivenConsentPrompt>(ConsentAnswer::yes),
            .logger = Logger(log, "benchmark", "EventStore"),
        });
        auto const found =
            store->eventsMatching({.start = {noon - 1}, .end = {noon + 1}, .calendars = std::nullopt});
        require(!found.empty(), "there is an event at noon");
        event = found.front();
    }

    void save(int time) {
        event.title = "Changed " + std::to_string(time);
        store->save(event, EKSpan::thisEvent);
    }

private:
    std::shared_ptr<RecordingLogSink> log;
    std::unique_ptr<FolderEventStore> store;
    EKEvent event;
};

class Bare {
public:
    explicit Bare(path const& home) : folder(home / "Root/work") {
        std::ifstream stream(folder / "36.ics", std::ios::binary);
        content = {std::istreambuf_iterator<char>(stream), {}};
        require(!content.empty(), "there is a file to replace");
    }

    void save(int time) {
        auto const aside = folder / (".bare-" + std::to_string(time) + ".tmp");
        int const file = ::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        bool const isWritten =
            ::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
        require(isWritten && ::fsync(file) == 0 && ::close(file) == 0, "the file is written");
        require(::rename(aside.c_str(), (folder / "36.ics").c_str()) == 0, "the file is in its place");
        int const directory = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        require(::fsync(directory) == 0 && ::close(directory) == 0, "the folder is synced");
    }

private:
    path folder;
    std::string content;
};

class Stopwatch {
public:
    template <typename Work>
    void measure(Work work) {
        auto const start = std::chrono::steady_clock::now();
        work();
        taken.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }

    [[nodiscard]] double median() {
        std::ranges::sort(taken);
        return taken[taken.size() / 2];
    }

private:
    std::vector<double> taken;
};

} // namespace

int main(int count, char** arguments) {
    require(count == 4, "usage: quillora_bench_save_event FOLDER EVENTS TIMES");
    path const home(arguments[1]);
    makeCalendar(home / "Root/work", std::atoi(arguments[2]));
    Store store(home);
    Bare bare(home);
    // What is done once only is not what a save takes.
    store.save(-1);
    bare.save(-1);
    Stopwatch ours;
    Stopwatch floor;
    for (int time = 0; time < std::atoi(arguments[3]); ++time) {
        ours.measure([&] { store.save(time); });
        floor.measure([&] { bare.save(time); });
    }
    std::printf("store %.1f us\nbare %.1f us\n", ours.median(), floor.median());
}
