#include "Applications/Front/WholeCompanion.h"

#include <gtest/gtest.h>

namespace Front {
namespace {

TEST(WholeCompanionTests, itLiesBelowThePrefixOfTheProgram) {
    EXPECT_EQ(wholeCompanion("/usr/bin"), "/usr/libexec/quillora/quillora-companion");
    EXPECT_EQ(wholeCompanion("/home/me/a prefix/bin"),
              "/home/me/a prefix/libexec/quillora/quillora-companion");
}

} // namespace
} // namespace Front
