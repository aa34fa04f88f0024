#include "PrivateHome.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;
namespace JSON = Foundation::JSON;

PrivateHome::PrivateHome() {
    std::string name = (fs::temp_directory_path() / "quillora-home-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
    root = name;
    for (auto const* folder : {"config", "data", "cache", "run", "tmp"})
        fs::create_directory(root / folder);
    environment = {{"PATH", "/usr/bin:/bin"},
                   {"HOME", root.string()},
                   {"XDG_CONFIG_HOME", (root / "config").string()},
                   {"XDG_DATA_HOME", (root / "data").string()},
                   {"XDG_CACHE_HOME", (root / "cache").string()},
                   {"XDG_RUNTIME_DIR", (root / "run").string()},
                   {"TMPDIR", (root / "tmp").string()},
                   {"LANG", "C.UTF-8"},
                   {"TZ", "Europe/Berlin"}};
    // A sanitizer's settings belong to the build, not to the person.
    for (auto const* variable : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
        if (auto const* value = std::getenv(variable)) environment[variable] = value;
}

PrivateHome::~PrivateHome() {
    std::error_code error;
    fs::remove_all(root, error);
}

ProgramResult PrivateHome::quillora(std::vector<std::string> words) const {
    return quillora(std::move(words), ProgramRun::Output::captured);
}

ProgramResult PrivateHome::quillora(std::vector<std::string> words, ProgramRun::Output output,
                                    std::string input) const {
    return run({.path = QUILLORA_BUILD_DIR "/bin/quillora",
                .arguments = std::move(words),
                .environment = environment,
                .directory = root.string(),
                .input = std::move(input),
                .output = output});
}

ProgramResult PrivateHome::quilloraAsked(std::vector<std::string> words, std::string question,
                                         std::string input, std::function<void()> meanwhile) const {
    return run({.path = QUILLORA_BUILD_DIR "/bin/quillora",
                .arguments = std::move(words),
                .environment = environment,
                .directory = root.string(),
                .input = std::move(input),
                .inputAfter = std::move(question),
                .beforeInput = std::move(meanwhile),
                .output = ProgramRun::Output::terminal});
}

ProgramResult PrivateHome::quilloraWithoutOverride(std::vector<std::string> words) const {
    return run({.path = QUILLORA_BUILD_DIR "/bin/quillora",
                .arguments = std::move(words),
                .environment = environment,
                .directory = root.string(),
                .rights = ProgramRun::Rights::withoutOverride});
}

std::string PrivateHome::outputOf(std::vector<std::string> words) const {
    auto result = quillora(std::move(words));
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
}

JSON::Value PrivateHome::dayJSON(std::vector<std::string> words) const {
    words.insert(words.begin(), {"day", "--json"});
    auto const result = quillora(std::move(words));
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    auto document = JSON::parse(result.output);
    EXPECT_TRUE(document.has_value()) << result.output;
    return document.value_or(JSON::Value());
}

void PrivateHome::setUp() const {
    fs::create_directories(calendars());
    auto const setup = quillora({"setup", "--yes", "--keychain", "file"});
    ASSERT_EQ(setup.exitCode, 0) << setup.errors;
    auto const added = quillora({"sources", "add", calendars().string(), "--title", "Cal"});
    ASSERT_EQ(added.exitCode, 0) << added.errors;
}

void PrivateHome::write(fs::path const& path, std::string_view content) const {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string PrivateHome::contentOf(fs::path const& path) const {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::map<std::string, std::string> PrivateHome::snapshot() const {
    std::map<std::string, std::string> found;
    for (auto entry = fs::recursive_directory_iterator(root); entry != fs::recursive_directory_iterator();
         ++entry) {
        if (entry->path() == root / "cache") {
            entry.disable_recursion_pending();
            continue;
        }
        found[entry->path().string()] = entry->is_regular_file() ? contentOf(entry->path()) : "";
    }
    return found;
}

void copyProgram(fs::path const& prefix) {
    for (auto const* program : {"bin/quillora", "libexec/quillora/quillora-companion"}) {
        fs::create_directories((prefix / program).parent_path());
        fs::copy_file(fs::path(QUILLORA_BUILD_DIR) / program, prefix / program);
    }
}

std::string calendarFile(std::string_view components) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Example//Tests//EN\r\n" + std::string(components) +
           "END:VCALENDAR\r\n";
}

std::string event(std::string_view uid, std::string_view title, std::string_view start, std::string_view end,
                  std::string_view more) {
    std::ostringstream text;
    text << "BEGIN:VEVENT\r\nUID:" << uid << "\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:" << title
         << "\r\nDTSTART" << start << "\r\nDTEND" << end << "\r\n"
         << more << "END:VEVENT\r\n";
    return text.str();
}

std::vector<std::string> meetNames(JSON::Value const& day) {
    std::vector<std::string> names;
    auto const* meetings = day.member("meetings");
    EXPECT_NE(meetings, nullptr);
    if (meetings == nullptr) return names;
    for (auto const& meet : std::get<JSON::Array>(meetings->storage))
        names.push_back(JSON::text(*meet.member("metName")).value());
    return names;
}
