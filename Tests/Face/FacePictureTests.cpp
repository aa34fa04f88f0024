#include "Platform/Face/FacePainter.h"
#include "Platform/Face/FacePicture.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Files/PosixFileManager.h"
#include "Tests/Face/SampleFaces.h"

#include <cairo.h>
#include <glib.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>

namespace {

using namespace Platform;
using testing::TempDir;

FacePainter painter() {
    return FacePainter(FaceStyle{.fontFamily = "Inter", .language = "en", .accent = std::nullopt});
}

FaceLayout busy(WidgetFamily family, ColorScheme scheme = ColorScheme::light) {
    return SampleFaces::busy(family, scheme);
}

struct PixelSize {
    int width;
    int height;

    bool operator==(PixelSize const&) const = default;
};

/// What a reader of PNG files makes of it.
PixelSize sizeOfPNG(std::string const& picture) {
    std::string_view rest = picture;
    auto* image = cairo_image_surface_create_from_png_stream(
        [](void* source, unsigned char* target, unsigned length) {
            auto& left = *static_cast<std::string_view*>(source);
            if (left.size() < length) return CAIRO_STATUS_READ_ERROR;
            std::memcpy(target, left.data(), length);
            left.remove_prefix(length);
            return CAIRO_STATUS_SUCCESS;
        },
        &rest);
    EXPECT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
    EXPECT_TRUE(rest.empty());
    PixelSize const size{.width = cairo_image_surface_get_width(image),
                         .height = cairo_image_surface_get_height(image)};
    cairo_surface_destroy(image);
    return size;
}

/// The attributes of a well-formed document's first element; none where the document is not well-formed.
std::map<std::string, std::string> attributesOfXML(std::string const& document) {
    std::map<std::string, std::string> attributes;
    GMarkupParser parser{};
    parser.start_element = [](GMarkupParseContext*, gchar const* element, gchar const** names,
                              gchar const** values, gpointer target, GError**) {
        auto& found = *static_cast<std::map<std::string, std::string>*>(target);
        if (!found.empty()) return;
        found["element"] = element;
        for (; *names; ++names, ++values)
            found[*names] = *values;
    };
    auto* context = g_markup_parse_context_new(&parser, G_MARKUP_DEFAULT_FLAGS, &attributes, nullptr);
    bool const isWellFormed = g_markup_parse_context_parse(context, document.data(),
                                                           static_cast<gssize>(document.size()), nullptr) &&
                              g_markup_parse_context_end_parse(context, nullptr);
    g_markup_parse_context_free(context);
    EXPECT_TRUE(isWellFormed);
    return isWellFormed ? attributes : std::map<std::string, std::string>();
}

TEST(FacePictureTests, pngOfEveryFamilySchemeAndScale) {
    struct Row {
        WidgetFamily family;
        double scale;
        PixelSize size;
    };
    for (auto const scheme : {ColorScheme::light, ColorScheme::dark}) {
        for (auto const& [family, scale, size] : {
                 Row{WidgetFamily::systemSmall, 1, {170, 170}},
                 Row{WidgetFamily::systemMedium, 1, {364, 170}},
                 Row{WidgetFamily::systemLarge, 1, {364, 382}},
                 Row{WidgetFamily::systemExtraLarge, 1, {764, 382}},
                 Row{WidgetFamily::systemSmall, 0.5, {85, 85}},
                 Row{WidgetFamily::systemSmall, 1.25, {213, 213}},
                 Row{WidgetFamily::systemLarge, 3, {1092, 1146}},
             }) {
            auto const picture = FacePicture::png(painter(), busy(family, scheme), scale);
            ASSERT_TRUE(picture) << picture.error();
            EXPECT_EQ(sizeOfPNG(*picture), size) << Foundation::rawValue(family) << " at " << scale;
        }
    }
}

TEST(FacePictureTests, scaleThatGivesNoPictureIsNamed) {
    struct Row {
        double scale;
        char const* error;
    };
    for (auto const& [scale, error] : {
             Row{0, "A picture cannot be drawn at the scale 0. Nothing was written; give a scale above 0."},
             Row{-2, "A picture cannot be drawn at the scale -2. Nothing was written; give a scale above 0."},
             Row{std::numeric_limits<double>::quiet_NaN(),
                 "A picture cannot be drawn at the scale nan. Nothing was written; give a scale above 0."},
             Row{100,
                 "The scale 100 gives a picture of 36400 by 38200 pixels, and 32767 a side are the most. "
                 "Nothing was written; give a smaller scale."},
         }) {
        auto const picture = FacePicture::png(painter(), busy(WidgetFamily::systemLarge), scale);
        ASSERT_FALSE(picture) << scale;
        EXPECT_EQ(picture.error(), error);
    }
}

TEST(FacePictureTests, svgIsWellFormedAndMeasuredInPixels) {
    for (auto const& [family, name] : Foundation::rawValues<WidgetFamily>) {
        auto const picture = FacePicture::svg(painter(), busy(family));
        ASSERT_TRUE(picture) << picture.error();
        auto const attributes = attributesOfXML(*picture);
        auto const geometry = painter().place(busy(family));
        auto const width = std::to_string(static_cast<int>(geometry.width));
        auto const height = std::to_string(static_cast<int>(geometry.height));
        EXPECT_EQ(attributes.at("element"), "svg") << name;
        EXPECT_EQ(attributes.at("width"), width + "px") << name;
        EXPECT_EQ(attributes.at("height"), height + "px") << name;
        EXPECT_EQ(attributes.at("viewBox"), "0 0 " + width + " " + height) << name;
    }
}

TEST(FacePictureTests, pdfIsOnePageAsLargeAsTheFace) {
    auto const picture = FacePicture::pdf(painter(), busy(WidgetFamily::systemMedium));
    ASSERT_TRUE(picture) << picture.error();
    EXPECT_TRUE(picture->starts_with("%PDF-1.5"));
    EXPECT_TRUE(picture->ends_with("%%EOF\n"));
    EXPECT_NE(picture->find("/MediaBox [ 0 0 364 170 ]"), std::string::npos);
    EXPECT_NE(picture->find("/Count 1"), std::string::npos);
    EXPECT_NE(picture->find("/FontFile"), std::string::npos) << "texts stay texts";
}

TEST(FacePictureTests, faceThatGrewIsDrawnWhole) {
    auto layout = busy(WidgetFamily::systemLarge);
    for (int count = 0; count < 20; ++count) {
        layout.rows.insert(layout.rows.begin() + 2,
                           BarRow{.identifier = "x", .name = "More", .color = AccentColor{}});
    }
    auto const picture = FacePicture::png(painter(), layout, 1);
    ASSERT_TRUE(picture) << picture.error();
    auto const geometry = painter().place(layout);
    EXPECT_GT(geometry.height, 780);
    EXPECT_EQ(sizeOfPNG(*picture).height, static_cast<int>(std::ceil(geometry.height)));
}

TEST(FacePictureTests, pictureIsWrittenWhole) {
    InMemoryFileManager const files;
    ASSERT_TRUE(FacePicture::write(files, "/tmp/face.svg", "<svg/>"));
    EXPECT_EQ(files.content("/tmp/face.svg"), "<svg/>");
}

TEST(FacePictureTests, failedWriteLeavesTheOldPictureAndSaysWhatToDo) {
    InMemoryFileManager files;
    files.place("/tmp/face.png", "older");
    files.failsAfter(0);
    auto const written = FacePicture::write(files, "/tmp/face.png", "newer");
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(),
              "The picture could not be written to \"/tmp/face.png\": No space left on device. An "
              "older file of that name is unchanged; give another place, or make room and try again.");
    EXPECT_EQ(files.content("/tmp/face.png"), "older");
}

TEST(FacePictureTests, unwritablePathIsNamed) {
    PosixFileManager const files{Foundation::Environment()};
    auto const path = std::filesystem::path(TempDir()) /
                      ("quillora-no-such-folder-" + std::to_string(getpid())) / "face.png";
    auto const written = FacePicture::write(files, path, "picture");
    ASSERT_FALSE(written);
    EXPECT_NE(written.error().find(path.string()), std::string::npos);
    EXPECT_NE(written.error().find("No such file or directory"), std::string::npos);
}

} // namespace
