#pragma once

#include "Platform/Face/FaceLayout.h"

/// Colour arithmetic of the Web Content Accessibility Guidelines 2.1 on sRGB values.
namespace Platform::ColorMath {

/// From 0 (black) to 1 (white).
double relativeLuminance(SRGBColor const& color);

/// From 1 (equal luminance) to 21 (black on white), whichever of the two is the text.
double contrastRatio(SRGBColor const& one, SRGBColor const& other);

/// `from` with `share` (0 to 1) of each sRGB channel taken from `towards`: what drawing `towards` at that
/// opacity over `from` gives.
SRGBColor mix(SRGBColor const& from, SRGBColor const& towards, double share);

/// Black or white, whichever contrasts more with `background`; black on a tie.
SRGBColor blackOrWhite(SRGBColor const& background);

/// "#5CC2C6": each channel clamped to 0…1 and rounded to 255ths.
std::string hexText(SRGBColor const& color);

} // namespace Platform::ColorMath
