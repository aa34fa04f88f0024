#include "Applications/Composition/KeychainSetting.h"
#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Composition {
namespace {

constexpr char const* file = "/config/quillora/keychain.json";

class KeychainSettingTests : public testing::Test {
protected:
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    KeychainSetting setting{"/config/quillora", files};
};

TEST_F(KeychainSettingTests, withoutAChoiceItIsTheDesktopsKeyring) {
    EXPECT_EQ(setting.load(), KeychainKind::secretService);
    EXPECT_TRUE(files->files().empty());
}

TEST_F(KeychainSettingTests, whatWasChosenIsKept) {
    EXPECT_FALSE(setting.save(KeychainKind::file));
    EXPECT_EQ(files->content(file), "\"file\"");
    EXPECT_EQ(setting.load(), KeychainKind::file);
    EXPECT_FALSE(setting.save(KeychainKind::secretService));
    EXPECT_EQ(files->content(file), "\"secret-service\"");
    EXPECT_EQ(setting.load(), KeychainKind::secretService);
}

TEST_F(KeychainSettingTests, aFileThatNamesNoKeychainChoosesNone) {
    for (auto const* content : {"", "file", "\"File\"", "\"\"", "1", "[\"file\"]", "\"file\" x"}) {
        files->place(file, content);
        auto const kind = setting.load();
        ASSERT_FALSE(kind.has_value()) << content;
        EXPECT_EQ(
            kind.error(),
            "the file /config/quillora/keychain.json names no keychain, so no key was looked for; write "
            "\"secret-service\" or \"file\" into it, with the quotation marks");
    }
}

TEST_F(KeychainSettingTests, aFileThatCannotBeReadChoosesNone) {
    files->place(file, "\"file\"");
    files->refusesReads();
    auto const kind = setting.load();
    ASSERT_FALSE(kind.has_value());
    EXPECT_TRUE(
        kind.error().starts_with("the choice of a keychain in /config/quillora/keychain.json cannot be "
                                 "read, so no key was looked for: "))
        << kind.error();
}

TEST_F(KeychainSettingTests, aChoiceThatCannotBeKeptIsToldAndTheOldOneStays) {
    ASSERT_FALSE(setting.save(KeychainKind::file));
    files->failsAfter(0);
    EXPECT_TRUE(setting.save(KeychainKind::secretService));
    EXPECT_EQ(files->content(file), "\"file\"");
}

} // namespace
} // namespace Composition
