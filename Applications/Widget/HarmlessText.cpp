#include "Applications/Widget/HarmlessText.h"

#include "Foundation/Text.h"
#include "Platform/Face/FaceMetrics.h"

namespace Widget {

std::string harmless(std::string_view text) {
    return Foundation::Text::neutralized(
        Foundation::Text::truncated(text, Platform::FaceMeasures::longestName));
}

} // namespace Widget
