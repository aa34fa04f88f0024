#include "Applications/Companion/PictureStyle.h"

#include "Platform/Face/InterfaceFont.h"

#include <algorithm>

namespace Companion {

Platform::FaceStyle pictureStyle(Platform::Appearance const& desktop, Foundation::Locale const& locale) {
    Platform::FaceStyle style;
    style.language = locale.identifier;
    std::ranges::replace(style.language, '_', '-'); // ICU's spelling to that of BCP 47.
    if (auto const accent = desktop.accentColor())
        style.accent = Platform::SRGBColor{(*accent)[0], (*accent)[1], (*accent)[2]};
    if (auto const font = desktop.interfaceFont())
        style.fontFamily = Platform::familyOfInterfaceFont(*font).value_or(style.fontFamily);
    return style;
}

} // namespace Companion
