#include "Applications/Companion/PictureStyle.h"

#include "Platform/Appearance/FixedAppearance.h"

#include <gtest/gtest.h>

namespace Companion {
namespace {

Foundation::Locale const spanish{.identifier = "es_MX"};

TEST(PictureStyleTests, itIsTheDesktopsFontAndAccentAndTheReadersLanguage) {
    Platform::FixedAppearance const desktop(std::nullopt, std::array{0.25, 0.5, 1.0}, "Cantarell Bold 11");
    auto const style = pictureStyle(desktop, spanish);
    EXPECT_EQ(style.fontFamily, "Cantarell");
    EXPECT_EQ(style.accent, (Platform::SRGBColor{0.25, 0.5, 1.0}));
    EXPECT_EQ(style.language, "es-MX");
}

TEST(PictureStyleTests, withoutAFontOfTheDesktopItIsTheOrdinaryOne) {
    auto const ordinary = Platform::FaceStyle().fontFamily;
    for (std::optional<std::string> const& font :
         {std::optional<std::string>(), std::optional<std::string>("Sans 10"),
          std::optional<std::string>("11"), std::optional<std::string>("")}) {
        Platform::FixedAppearance const desktop(std::nullopt, std::nullopt, font);
        EXPECT_EQ(pictureStyle(desktop, spanish).fontFamily, ordinary) << font.value_or("none");
    }
}

} // namespace
} // namespace Companion
