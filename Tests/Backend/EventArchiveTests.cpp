#include "Samples/backend/EventArchive.h"
#include "Samples/backend/HostileAnswer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using Backend::EventArchive;
using Backend::HostileMode;
using Backend::Hostility;
using Backend::StoredEvent;

class EventArchiveTests : public testing::Test {
protected:
    EventArchiveTests() {
        std::string pattern = testing::TempDir() + "quillora-archive-XXXXXX";
        folder = ::mkdtemp(pattern.data());
    }
    ~EventArchiveTests() override { std::filesystem::remove_all(folder); }

    static StoredEvent event(std::string identifier) {
        return {.identifier = identifier, .record = {{"evtId", identifier}, {"evtTitle", "T"}}};
    }
    static std::vector<std::string> identifiers(EventArchive const& archive) {
        std::vector<std::string> names;
        for (auto const& stored : archive.events())
            names.push_back(stored.identifier);
        return names;
    }
    std::string content() {
        std::ifstream stream(folder / "events.json");
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    std::filesystem::path folder;
};

using Names = std::vector<std::string>;

TEST_F(EventArchiveTests, changesSurviveInTheFile) {
    auto archive = EventArchive::open(folder / "events.json").value();
    EXPECT_TRUE(archive.put(event("a")));
    EXPECT_TRUE(archive.put(event("b")));
    EXPECT_TRUE(archive.put(event("a")));
    EXPECT_EQ(identifiers(EventArchive::open(folder / "events.json").value()), (Names{"a", "b"}));
    EXPECT_TRUE(archive.remove("a"));
    EXPECT_EQ(identifiers(EventArchive::open(folder / "events.json").value()), Names{"b"});
}

TEST_F(EventArchiveTests, aFileThatIsNoArchiveIsNamedAndKept) {
    std::ofstream(folder / "events.json") << "{\"a\":1}";
    auto const archive = EventArchive::open(folder / "events.json");
    ASSERT_FALSE(archive.has_value());
    EXPECT_EQ(archive.error(),
              (folder / "events.json").string() + " is not a JSON list of events; it stays as it is");
    EXPECT_EQ(content(), "{\"a\":1}");
}

TEST_F(EventArchiveTests, aChangeThatCannotBeWrittenHasNotHappened) {
    auto archive = EventArchive::open(folder / "gone" / "events.json").value();
    EXPECT_FALSE(archive.put(event("a")));
    EXPECT_TRUE(archive.events().empty());
}

TEST(HostileModeTests, namesAreReadAndOnlyAResetTakesANumber) {
    EXPECT_EQ(HostileMode::fromText("gzip-bomb")->hostility, Hostility::gzipBomb);
    EXPECT_EQ(HostileMode::fromText("reset-at:17")->bytes, 17U);
    for (auto const* const text : {"", "reset-at:", "reset-at:x", "redirect:3", "Redirect"}) {
        EXPECT_FALSE(HostileMode::fromText(text).has_value()) << text;
    }
}

} // namespace
