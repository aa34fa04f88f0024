#include "Platform/Defaults/FileUserDefaults.h"
#include "Platform/Defaults/InMemoryUserDefaults.h"

#include "Platform/Files/PosixFileLocks.h"
#include "Platform/Files/PosixFileManager.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>

namespace {

using namespace Platform;
using StringArray = UserDefaults::StringArray;

// What the suite needs to know of an implementation beside the interface.
class World {
public:
    virtual ~World() = default;
    virtual UserDefaults& defaults() = 0;
    virtual void onFullDisk(std::function<void()> const& action) = 0;
};

class FileWorld final : public World {
public:
    UserDefaults& defaults() override { return settings; }

    // The limit on the size of a file fails in the middle of a write, as a full disk does.
    void onFullDisk(std::function<void()> const& action) override {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit usual{};
        ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &usual), 0);
        rlimit const small{.rlim_cur = 1, .rlim_max = usual.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
        action();
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &usual), 0);
    }

private:
    TemporaryFolder folder;
    FileUserDefaults settings{folder.path() / "quillora",
                              std::make_shared<PosixFileManager>(Foundation::Environment()),
                              std::make_shared<PosixFileLocks>()};
};

class InMemoryWorld final : public World {
public:
    UserDefaults& defaults() override { return settings; }
    void onFullDisk(std::function<void()> const& action) override {
        settings.failsAfter(0);
        action();
    }

private:
    InMemoryUserDefaults settings;
};

struct Implementation {
    std::string name;
    std::unique_ptr<World> (*make)();

    friend void PrintTo(Implementation const& implementation, std::ostream* stream) {
        *stream << implementation.name;
    }
};

class UserDefaultsContractTests : public testing::TestWithParam<Implementation> {
protected:
    void SetUp() override {
        ASSERT_EQ(defaults.setString("text", "former"), std::error_code());
        ASSERT_EQ(defaults.setStringArray("list", {"b", "a"}), std::error_code());
        ASSERT_EQ(defaults.setData("bytes", "former"), std::error_code());
    }

    std::unique_ptr<World> world = GetParam().make();
    UserDefaults& defaults = world->defaults();
};

INSTANTIATE_TEST_SUITE_P(, UserDefaultsContractTests,
                         testing::Values(Implementation{"File",
                                                        []() -> std::unique_ptr<World> {
                                                            return std::make_unique<FileWorld>();
                                                        }},
                                         Implementation{"InMemory",
                                                        []() -> std::unique_ptr<World> {
                                                            return std::make_unique<InMemoryWorld>();
                                                        }}),
                         [](auto const& tested) { return tested.param.name; });

TEST_P(UserDefaultsContractTests, aKeyWithoutAValueIsAbsent) {
    EXPECT_EQ(defaults.string("other"), std::nullopt);
    EXPECT_EQ(defaults.stringArray("other"), std::nullopt);
    EXPECT_EQ(defaults.data("other"), std::nullopt);
    EXPECT_EQ(defaults.string(""), std::nullopt);
}

TEST_P(UserDefaultsContractTests, everyTextComesBackAsItWas) {
    for (auto const* text : {"hero", "", "a/b \"c\" \\ d", "línea\notra\t€ 😀", "\x7F\x1F"}) {
        EXPECT_EQ(defaults.setString("text", text), std::error_code());
        EXPECT_EQ(defaults.string("text"), text);
    }
    std::string const withNUL("a\0b", 3);
    EXPECT_EQ(defaults.setString("text", withNUL), std::error_code());
    EXPECT_EQ(defaults.string("text"), withNUL);
}

TEST_P(UserDefaultsContractTests, everyListComesBackAsItWas) {
    for (auto const& list : {StringArray{}, StringArray{""}, StringArray{"b", "a", "b"}}) {
        EXPECT_EQ(defaults.setStringArray("list", list), std::error_code());
        EXPECT_EQ(defaults.stringArray("list"), list);
    }
}

TEST_P(UserDefaultsContractTests, allBytesComeBackAsTheyWere) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(defaults.setData("bytes", bytes), std::error_code());
    EXPECT_EQ(defaults.data("bytes"), bytes);
    EXPECT_EQ(defaults.setData("bytes", ""), std::error_code());
    EXPECT_EQ(defaults.data("bytes"), "");
}

TEST_P(UserDefaultsContractTests, aValueIsAbsentUnderAnotherType) {
    EXPECT_EQ(defaults.stringArray("text"), std::nullopt);
    EXPECT_EQ(defaults.data("text"), std::nullopt);
    EXPECT_EQ(defaults.string("list"), std::nullopt);
    EXPECT_EQ(defaults.data("list"), std::nullopt);
    EXPECT_EQ(defaults.string("bytes"), std::nullopt);
    EXPECT_EQ(defaults.stringArray("bytes"), std::nullopt);
}

TEST_P(UserDefaultsContractTests, aNewValueReplacesOneOfAnotherType) {
    EXPECT_EQ(defaults.setStringArray("text", {"a"}), std::error_code());
    EXPECT_EQ(defaults.string("text"), std::nullopt);
    EXPECT_EQ(defaults.stringArray("text"), StringArray{"a"});
    EXPECT_EQ(defaults.setData("text", "b"), std::error_code());
    EXPECT_EQ(defaults.stringArray("text"), std::nullopt);
    EXPECT_EQ(defaults.data("text"), "b");
}

TEST_P(UserDefaultsContractTests, keysAreApart) {
    EXPECT_EQ(defaults.setString("Text", "capital"), std::error_code());
    EXPECT_EQ(defaults.setString("te\"x/t.ü", "odd"), std::error_code());
    EXPECT_EQ(defaults.string("text"), "former");
    EXPECT_EQ(defaults.string("Text"), "capital");
    EXPECT_EQ(defaults.string("te\"x/t.ü"), "odd");
}

TEST_P(UserDefaultsContractTests, aRemovedValueIsAbsentAndTheOthersStay) {
    EXPECT_EQ(defaults.removeObject("text"), std::error_code());
    EXPECT_EQ(defaults.string("text"), std::nullopt);
    EXPECT_EQ(defaults.stringArray("list"), (StringArray{"b", "a"}));
    EXPECT_EQ(defaults.data("bytes"), "former");
}

TEST_P(UserDefaultsContractTests, removingWhatIsNotThereIsNoError) {
    EXPECT_EQ(defaults.removeObject("other"), std::error_code());
}

TEST_P(UserDefaultsContractTests, anUpdateIsGivenTheStoredList) {
    EXPECT_EQ(defaults.updateStringArray("list",
                                         [](StringArray list) {
                                             list.emplace_back("c");
                                             return list;
                                         }),
              std::error_code());
    EXPECT_EQ(defaults.stringArray("list"), (StringArray{"b", "a", "c"}));
}

TEST_P(UserDefaultsContractTests, anUpdateOfNoListIsGivenAnEmptyOne) {
    for (auto const* key : {"other", "text", "bytes"}) {
        StringArray given{"unset"};
        EXPECT_EQ(defaults.updateStringArray(key,
                                             [&](StringArray const& list) {
                                                 given = list;
                                                 return StringArray{};
                                             }),
                  std::error_code());
        EXPECT_EQ(given, StringArray{});
        EXPECT_EQ(defaults.stringArray(key), StringArray{}) << key;
    }
}

TEST_P(UserDefaultsContractTests, aTextThatIsNotUTF8ChangesNothing) {
    auto const refused = std::make_error_code(std::errc::illegal_byte_sequence);
    EXPECT_EQ(defaults.setString("text", "bad\xFF"), refused);
    EXPECT_EQ(defaults.setStringArray("list", {"good", "bad\xFF"}), refused);
    EXPECT_EQ(defaults.updateStringArray("list", [](StringArray const&) { return StringArray{"bad\xFF"}; }),
              refused);
    EXPECT_EQ(defaults.setString("key\xFF", "text"), refused);
    EXPECT_EQ(defaults.setData("key\xFF", "text"), refused);
    EXPECT_EQ(defaults.string("text"), "former");
    EXPECT_EQ(defaults.stringArray("list"), (StringArray{"b", "a"}));
}

TEST_P(UserDefaultsContractTests, aChangeThatFailsLeavesEverything) {
    std::vector<std::error_code> failures;
    world->onFullDisk([&] {
        failures = {defaults.setString("text", "latter"), defaults.setStringArray("list", {"latter"}),
                    defaults.setData("bytes", "latter"), defaults.removeObject("text"),
                    defaults.updateStringArray("list", [](StringArray const&) { return StringArray{}; })};
    });
    ASSERT_EQ(failures.size(), 5U);
    for (auto const& failure : failures)
        EXPECT_NE(failure, std::error_code());
    EXPECT_EQ(defaults.string("text"), "former");
    EXPECT_EQ(defaults.stringArray("list"), (StringArray{"b", "a"}));
    EXPECT_EQ(defaults.data("bytes"), "former");
}

TEST_P(UserDefaultsContractTests, threadsThatChangeAtOnceLoseNothing) {
    constexpr int count = 20;
    auto const insert = [this](std::string const& prefix) {
        for (int number = 0; number < count; ++number) {
            auto const name = prefix + std::to_string(number);
            EXPECT_EQ(defaults.updateStringArray("shared",
                                                 [&](StringArray list) {
                                                     list.push_back(name);
                                                     return list;
                                                 }),
                      std::error_code());
            EXPECT_EQ(defaults.setString(name, "there"), std::error_code());
        }
    };
    std::thread other(insert, "x");
    insert("y");
    other.join();
    EXPECT_EQ(defaults.stringArray("shared")->size(), 2U * count);
    for (int number = 0; number < count; ++number) {
        EXPECT_EQ(defaults.string("x" + std::to_string(number)), "there");
        EXPECT_EQ(defaults.string("y" + std::to_string(number)), "there");
    }
}

} // namespace
