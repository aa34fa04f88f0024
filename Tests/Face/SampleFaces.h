#pragma once

#include "Platform/Face/FaceLayout.h"

/// Faces made by hand, as the view layer would fill them, for tests and the preview.
namespace SampleFaces {

Platform::SRGBColor rgb(unsigned value);

/// Nothing but the header, in the colours of the scheme.
Platform::FaceLayout blank(Platform::WidgetFamily family, Platform::ColorScheme scheme);

/// A card with the measures that the family's cards bear.
Platform::CardRow card(Platform::FaceLayout const& layout, std::string name, std::string time,
                       std::string duration, Platform::FaceColor color);

/// A busy Wednesday: two all-day meets on the larger families, as many cards as the family shows, and more.
/// Titles of several scripts, one of them too long.
Platform::FaceLayout busy(Platform::WidgetFamily family, Platform::ColorScheme scheme);

/// A day without meets, in Spanish.
Platform::FaceLayout empty(Platform::WidgetFamily family, Platform::ColorScheme scheme);

} // namespace SampleFaces
