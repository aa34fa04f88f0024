#include "Tests/Face/Canvas.h"

#include "Platform/Face/ColorMath.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>

namespace {

int inPixels(double points, double scale) {
    return static_cast<int>(std::floor(points * scale));
}

int channel(std::uint32_t pixel, int shift) {
    return static_cast<int>(pixel >> shift & 0xFF);
}

} // namespace

Canvas::Canvas(double width, double height, double scale)
    : scale(scale),
      surface(
          cairo_image_surface_create(CAIRO_FORMAT_ARGB32, inPixels(width, scale), inPixels(height, scale))),
      cairo(cairo_create(surface.get())) {
    cairo_scale(cairo.get(), scale, scale);
}

std::string Canvas::colorAt(double x, double y) const {
    auto const found = pixel(inPixels(x, scale), inPixels(y, scale));
    return Platform::ColorMath::hexText({.red = channel(found, 16) / 255.0,
                                         .green = channel(found, 8) / 255.0,
                                         .blue = channel(found, 0) / 255.0});
}

double Canvas::opacityAt(double x, double y) const {
    return channel(pixel(inPixels(x, scale), inPixels(y, scale)), 24) / 255.0;
}

std::size_t Canvas::colorsIn(Platform::FaceRect const& part) const {
    auto const found = pixelsIn(part);
    return std::set(found.begin(), found.end()).size();
}

bool Canvas::hasColorfulPixelIn(Platform::FaceRect const& part) const {
    return std::ranges::any_of(pixelsIn(part), [](std::uint32_t found) {
        auto const [least, most] = std::minmax({channel(found, 16), channel(found, 8), channel(found, 0)});
        return most - least > 60;
    });
}

std::vector<std::uint32_t> Canvas::pixels() const {
    return pixelsIn(Platform::FaceRect{
        .x = 0,
        .y = 0,
        .width = cairo_image_surface_get_width(surface.get()) / scale,
        .height = cairo_image_surface_get_height(surface.get()) / scale,
    });
}

std::uint32_t Canvas::pixel(int column, int row) const {
    cairo_surface_flush(surface.get());
    auto const* start = cairo_image_surface_get_data(surface.get()) +
                        static_cast<std::ptrdiff_t>(row) * cairo_image_surface_get_stride(surface.get());
    std::uint32_t value = 0;
    std::memcpy(&value, start + static_cast<std::ptrdiff_t>(column) * 4, sizeof value);
    return value;
}

std::vector<std::uint32_t> Canvas::pixelsIn(Platform::FaceRect const& part) const {
    std::vector<std::uint32_t> found;
    for (int row = inPixels(part.y, scale); row < inPixels(part.bottom(), scale); ++row) {
        for (int column = inPixels(part.x, scale); column < inPixels(part.right(), scale); ++column) {
            found.push_back(pixel(column, row));
        }
    }
    return found;
}
