#include "Platform/Face/FacePainter.h"
#include "Platform/Face/FacePicture.h"
#include "Tests/Face/SampleFaces.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

/// Draws the sample faces for looking at: quillora-face-preview FOLDER [SCALE [FONT]].
namespace {

using namespace Platform;

bool save(std::string const& path, std::expected<std::string, std::string> const& picture) {
    if (!picture) {
        std::fprintf(stderr, "%s\n", picture.error().c_str());
        return false;
    }
    std::ofstream file(path, std::ios::binary);
    file << *picture;
    file.close();
    if (!file) std::fprintf(stderr, "cannot write %s\n", path.c_str());
    return file.good();
}

FaceLayout mirrored(ColorScheme scheme) {
    auto layout = SampleFaces::busy(WidgetFamily::systemLarge, scheme);
    layout.isRightToLeft = true;
    std::get<HeaderRow>(layout.rows[0]).weekday = "الأربعاء";
    std::get<LabelRow>(layout.rows[1]).text = "طوال اليوم";
    return layout;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s FOLDER [SCALE [FONT]]\n", argv[0]);
        return 2;
    }
    std::string const folder = argv[1];
    double const scale = argc > 2 ? std::strtod(argv[2], nullptr) : 3;
    FacePainter const painter(
        FaceStyle{.fontFamily = argc > 3 ? argv[3] : "Inter", .language = "en", .accent = {}});
    bool isDone = true;
    for (auto const scheme : {ColorScheme::light, ColorScheme::dark}) {
        std::string const suffix = scheme == ColorScheme::dark ? "-dark" : "-light";
        for (auto const& [family, name] : Foundation::rawValues<WidgetFamily>) {
            auto const layout = SampleFaces::busy(family, scheme);
            auto const start = folder + "/" + std::string(name) + suffix;
            isDone &= save(start + ".png", FacePicture::png(painter, layout, scale));
            isDone &= save(start + ".svg", FacePicture::svg(painter, layout));
            isDone &= save(start + ".pdf", FacePicture::pdf(painter, layout));
        }
        auto const empty = SampleFaces::empty(WidgetFamily::systemSmall, scheme);
        isDone &= save(folder + "/empty" + suffix + ".png", FacePicture::png(painter, empty, scale));
        isDone &=
            save(folder + "/mirrored" + suffix + ".png", FacePicture::png(painter, mirrored(scheme), scale));
    }
    return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}
