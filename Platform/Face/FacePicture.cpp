#include "Platform/Face/FacePicture.h"

#include "Platform/Face/CairoHandles.h"
#include "Platform/Face/FacePainter.h"
#include "Platform/Files/FileManager.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <fmt/format.h>

#include <cmath>

namespace Platform::FacePicture {
namespace {

using CairoHandles::Owned;
using Surface = Owned<cairo_surface_t>;

/// Cairo accepts no larger image.
constexpr double largestSide = 32767;

cairo_status_t append(void* closure, unsigned char const* data, unsigned int length) {
    try {
        static_cast<std::string*>(closure)->append(reinterpret_cast<char const*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    } catch (...) {
        return CAIRO_STATUS_NO_MEMORY;
    }
}

std::unexpected<std::string> notDrawn(cairo_status_t status) {
    return std::unexpected(fmt::format("The picture could not be drawn: {}. Nothing was written.",
                                       cairo_status_to_string(status)));
}

/// Paints on the surface; what went wrong on the way, or success.
cairo_status_t paintOn(cairo_surface_t* surface, double scale, FacePainter const& painter,
                       FaceLayout const& layout, FaceGeometry const& geometry) {
    Owned<cairo_t> const context(cairo_create(surface));
    cairo_scale(context.get(), scale, scale);
    painter.paint(context.get(), layout, geometry);
    return cairo_status(context.get());
}

/// Ends a surface that writes as it goes, and yields what it wrote.
std::expected<std::string, std::string> finished(Surface const& surface, cairo_status_t painted,
                                                 std::string const& written) {
    cairo_surface_finish(surface.get());
    if (painted != CAIRO_STATUS_SUCCESS) return notDrawn(painted);
    auto const status = cairo_surface_status(surface.get());
    if (status != CAIRO_STATUS_SUCCESS) return notDrawn(status);
    return written;
}

} // namespace

std::expected<std::string, std::string> png(FacePainter const& painter, FaceLayout const& layout,
                                            double scale) {
    if (!std::isfinite(scale) || scale <= 0) {
        return std::unexpected(fmt::format(
            "A picture cannot be drawn at the scale {}. Nothing was written; give a scale above 0.", scale));
    }
    auto const geometry = painter.place(layout);
    double const width = std::ceil(geometry.width * scale);
    double const height = std::ceil(geometry.height * scale);
    if (width > largestSide || height > largestSide) {
        return std::unexpected(
            fmt::format("The scale {} gives a picture of {:.0f} by {:.0f} pixels, and {:.0f} a side are "
                        "the most. Nothing was written; give a smaller scale.",
                        scale, width, height, largestSide));
    }
    Surface const surface(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width), static_cast<int>(height)));
    auto const painted = paintOn(surface.get(), scale, painter, layout, geometry);
    if (painted != CAIRO_STATUS_SUCCESS) return notDrawn(painted);
    std::string written;
    auto const status = cairo_surface_write_to_png_stream(surface.get(), append, &written);
    if (status != CAIRO_STATUS_SUCCESS) return notDrawn(status);
    return written;
}

std::expected<std::string, std::string> svg(FacePainter const& painter, FaceLayout const& layout) {
    auto const geometry = painter.place(layout);
    std::string written;
    Surface const surface(
        cairo_svg_surface_create_for_stream(append, &written, geometry.width, geometry.height));
    cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
    auto const painted = paintOn(surface.get(), 1, painter, layout, geometry);
    return finished(surface, painted, written);
}

std::expected<std::string, std::string> pdf(FacePainter const& painter, FaceLayout const& layout) {
    auto const geometry = painter.place(layout);
    std::string written;
    Surface const surface(
        cairo_pdf_surface_create_for_stream(append, &written, geometry.width, geometry.height));
    cairo_pdf_surface_restrict_to_version(surface.get(), CAIRO_PDF_VERSION_1_5);
    auto const painted = paintOn(surface.get(), 1, painter, layout, geometry);
    return finished(surface, painted, written);
}

std::expected<void, std::string> write(FileManager const& files, std::filesystem::path const& path,
                                       std::string const& picture) {
    if (auto const error = files.writeAtomically(path, picture)) {
        return std::unexpected(
            fmt::format("The picture could not be written to \"{}\": {}. An older file of that name "
                        "is unchanged; give another place, or make room and try again.",
                        path.string(), error.message()));
    }
    return {};
}

} // namespace Platform::FacePicture
