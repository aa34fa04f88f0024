#include "Foundation/Environment.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace Foundation;

TEST(EnvironmentTests, aSnapshotDoesNotFollowTheProcess) {
    ::setenv("QUILLORA_TEST_VARIABLE", "first", 1);
    ::setenv("QUILLORA_TEST_EMPTY", "", 1);
    auto const snapshot = Environment::ofProcess();
    ::setenv("QUILLORA_TEST_VARIABLE", "second", 1);

    EXPECT_EQ(snapshot.value("QUILLORA_TEST_VARIABLE"), "first");
    EXPECT_EQ(snapshot.value("QUILLORA_TEST_EMPTY"), "");
    EXPECT_EQ(snapshot.value("QUILLORA_TEST_UNSET"), std::nullopt);
}

TEST(EnvironmentTests, settingYieldsACopy) {
    Environment const original({{"A", "1"}});
    auto const changed = original.setting("A", "2").setting("B", "3");
    EXPECT_EQ(original.value("A"), "1");
    EXPECT_EQ(changed.value("A"), "2");
    EXPECT_EQ(changed.value("B"), "3");
}

TEST(EnvironmentTests, assignmentsAreAllOfItByName) {
    Environment const environment({{"B", ""}, {"A", "1=2 3"}});
    EXPECT_EQ(environment.assignments(), (std::vector<std::string>{"A=1=2 3", "B="}));
}

} // namespace
