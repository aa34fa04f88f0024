#include "Applications/Composition/BackendSetting.h"
#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Composition {
namespace {

class BackendSettingTests : public testing::Test {
protected:
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    BackendSetting setting{"/config/quillora", files};
    Foundation::URL const url{.absoluteString = "https://h/a"};
};

TEST_F(BackendSettingTests, withoutAFileNobodyIsLoggedInAndNothingIsLogged) {
    EXPECT_EQ(setting.baseURL().value(), std::nullopt);
    EXPECT_FALSE(setting.isLogEnabled());
    EXPECT_FALSE(setting.forgetBaseURL());
    EXPECT_TRUE(files->files().empty());
}

TEST_F(BackendSettingTests, whatWasSavedIsKeptAndForgotten) {
    EXPECT_FALSE(setting.saveBaseURL(url));
    EXPECT_FALSE(setting.saveLogEnabled(true));
    EXPECT_EQ(files->content("/config/quillora/backend.json"), R"("https:\/\/h\/a")");
    EXPECT_EQ(files->content("/config/quillora/backend-log.json"), "true");
    EXPECT_EQ(setting.baseURL().value(), url);
    EXPECT_TRUE(setting.isLogEnabled());
    EXPECT_FALSE(setting.saveLogEnabled(false));
    EXPECT_FALSE(setting.forgetBaseURL());
    EXPECT_EQ(setting.baseURL().value(), std::nullopt);
    EXPECT_FALSE(setting.isLogEnabled());
}

TEST_F(BackendSettingTests, aFileThatHoldsNoAddressIsTold) {
    for (auto const* content : {"", "https://h", "1", "[\"https://h\"]"}) {
        files->place("/config/quillora/backend.json", content);
        auto const known = setting.baseURL();
        ASSERT_FALSE(known.has_value()) << content;
        EXPECT_EQ(known.error(), "the file /config/quillora/backend.json holds no address of a backend, so "
                                 "nothing was sent; log in again with \"quillora backend login --url URL\"");
    }
    files->refusesReads();
    EXPECT_TRUE(setting.baseURL().error().starts_with(
        "the address of the backend in /config/quillora/backend.json cannot be read, so nothing was sent: "));
}

TEST_F(BackendSettingTests, anAddressThatCannotBeKeptLeavesTheOldOne) {
    ASSERT_FALSE(setting.saveBaseURL(url));
    files->failsAfter(0);
    EXPECT_TRUE(setting.saveBaseURL({.absoluteString = "https://other"}));
    EXPECT_EQ(setting.baseURL().value(), url);
}

TEST_F(BackendSettingTests, aDamagedSwitchOfTheLogIsOff) {
    for (auto const* content : {"", "yes", "1", "\"true\""}) {
        files->place("/config/quillora/backend-log.json", content);
        EXPECT_FALSE(setting.isLogEnabled()) << content;
    }
}

} // namespace
} // namespace Composition
