#include "Applications/Companion/AskedOnceAppearance.h"

#include <gtest/gtest.h>

namespace Companion {
namespace {

// A dark desktop that counts the questions.
class CountingAppearance final : public Platform::Appearance {
public:
    [[nodiscard]] std::optional<Platform::ColorScheme> colorScheme() const override {
        ++schemeQuestions;
        return Platform::ColorScheme::dark;
    }
    [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override {
        ++accentQuestions;
        return std::nullopt;
    }
    [[nodiscard]] std::optional<std::string> interfaceFont() const override {
        ++fontQuestions;
        return "Cantarell 11";
    }

    mutable int schemeQuestions = 0;
    mutable int accentQuestions = 0;
    mutable int fontQuestions = 0;
};

TEST(AskedOnceAppearanceTests, theDesktopIsAskedOnceAlsoWhenItHasNoAnswer) {
    auto const desktop = std::make_shared<CountingAppearance>();
    AskedOnceAppearance const appearance(desktop, std::nullopt);
    EXPECT_EQ(desktop->schemeQuestions, 0);
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(appearance.colorScheme(), Platform::ColorScheme::dark);
        EXPECT_EQ(appearance.accentColor(), std::nullopt);
        EXPECT_EQ(appearance.interfaceFont(), "Cantarell 11");
    }
    EXPECT_EQ(desktop->schemeQuestions, 1);
    EXPECT_EQ(desktop->accentQuestions, 1);
    EXPECT_EQ(desktop->fontQuestions, 1);
}

TEST(AskedOnceAppearanceTests, aGivenSchemeNeedsNoQuestion) {
    auto const desktop = std::make_shared<CountingAppearance>();
    AskedOnceAppearance const appearance(desktop, Platform::ColorScheme::light);
    EXPECT_EQ(appearance.colorScheme(), Platform::ColorScheme::light);
    EXPECT_EQ(desktop->schemeQuestions, 0);
}

} // namespace
} // namespace Companion
