#pragma once

#include "Platform/Face/FaceGeometry.h"

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// An image to draw on and to look at, its places told in points.
class Canvas {
public:
    Canvas(double width, double height, double scale);

    [[nodiscard]] cairo_t* context() { return cairo.get(); }

    /// "#RRGGBB" of the pixel that holds the point.
    [[nodiscard]] std::string colorAt(double x, double y) const;
    /// From 0 to 1.
    [[nodiscard]] double opacityAt(double x, double y) const;
    /// How many different colours there are in a part.
    [[nodiscard]] std::size_t colorsIn(Platform::FaceRect const& part) const;
    /// Whether a pixel in the part is far from any grey.
    [[nodiscard]] bool hasColorfulPixelIn(Platform::FaceRect const& part) const;
    [[nodiscard]] std::vector<std::uint32_t> pixels() const;

private:
    struct Release {
        void operator()(cairo_t* context) const { cairo_destroy(context); }
        void operator()(cairo_surface_t* image) const { cairo_surface_destroy(image); }
    };

    [[nodiscard]] std::uint32_t pixel(int column, int row) const;
    [[nodiscard]] std::vector<std::uint32_t> pixelsIn(Platform::FaceRect const& part) const;

    double scale;
    std::unique_ptr<cairo_surface_t, Release> surface;
    std::unique_ptr<cairo_t, Release> cairo;
};
