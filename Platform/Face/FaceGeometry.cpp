#include "Platform/Face/FaceGeometry.h"

#include "Platform/Face/FacePlacer.h"

namespace Platform {
namespace {

PlacedText::Alignment opposite(PlacedText::Alignment alignment) {
    using enum PlacedText::Alignment;
    switch (alignment) {
    case left: return right;
    case center: return center;
    case right: return left;
    }
    return alignment;
}

PlacedButton::Pointing opposite(PlacedButton::Pointing pointing) {
    using enum PlacedButton::Pointing;
    return pointing == left ? right : left;
}

void mirror(FaceGeometry& geometry) {
    auto flip = [&](FaceRect& rect) { rect.x = geometry.width - rect.right(); };
    for (auto& row : geometry.rows) {
        flip(row.frame);
        for (auto& text : row.texts) {
            flip(text.column);
            text.alignment = opposite(text.alignment);
        }
        if (row.surface) flip(row.surface->bar);
        if (row.badge) flip(*row.badge);
    }
    for (auto& button : geometry.buttons) {
        flip(button.frame);
        button.pointing = opposite(button.pointing);
    }
}

} // namespace

FaceGeometry placeFace(FaceLayout const& layout, TextMeasurer const& measurer) {
    auto geometry = FacePlacer(layout, measurer).place();
    if (layout.isRightToLeft) mirror(geometry);
    return geometry;
}

FaceHit hitTest(FaceGeometry const& geometry, double x, double y) {
    // The buttons first: their frames reach beyond the header's.
    for (auto const& button : geometry.buttons) {
        if (button.frame.contains(x, y)) return button.action;
    }
    for (auto const& row : geometry.rows) {
        if (row.frame.contains(x, y)) return row.index;
    }
    return std::monostate{};
}

} // namespace Platform
