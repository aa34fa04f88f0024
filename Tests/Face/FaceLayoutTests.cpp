#include "Platform/Face/FaceLayout.h"
#include "Tests/Face/GoldenFile.h"
#include "Tests/Face/SampleFaces.h"

#include <gtest/gtest.h>

namespace {

using namespace Platform;

TEST(FaceLayoutDumpTests, busyDayOfEveryFamily) {
    for (auto const& [family, name] : Foundation::rawValues<WidgetFamily>) {
        GoldenFile::expectSame("Tests/Face/Golden/busy-" + std::string(name) + ".txt",
                               dump(SampleFaces::busy(family, ColorScheme::light)));
    }
}

TEST(FaceLayoutDumpTests, emptyDayInTheDark) {
    GoldenFile::expectSame("Tests/Face/Golden/empty-dark.txt",
                           dump(SampleFaces::empty(WidgetFamily::systemSmall, ColorScheme::dark)));
}

TEST(FaceLayoutDumpTests, oneRowIsOneLineWhateverItsText) {
    auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
    layout.isRightToLeft = true;
    layout.rows = {BarRow{.identifier = "a\\b", .name = "two\nlines \"quoted\"\x7F", .color = AccentColor{}},
                   LineRow{.kind = LineRow::Kind::noPermission, .text = "No access"}};
    EXPECT_EQ(dump(layout), "face large light right-to-left background=#FFFFFF brand=#5CC2C6\n"
                            "bar \"two\\x0Alines \\\"quoted\\\"\\x7F\" color=accent id=\"a\\\\b\"\n"
                            "line noPermission \"No access\"\n");
}

TEST(FaceLayoutDumpTests, theAccentIsToldWhereItIsNotTheBrand) {
    auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
    layout.rows.clear();
    EXPECT_EQ(dump(layout), "face large light left-to-right background=#FFFFFF brand=#5CC2C6\n");
    layout.accent = SampleFaces::rgb(0x4080FF);
    EXPECT_EQ(dump(layout),
              "face large light left-to-right background=#FFFFFF brand=#5CC2C6 accent=#4080FF\n");
}

} // namespace
