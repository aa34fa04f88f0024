#pragma once

#include <optional>
#include <string>

namespace Platform {

/// The family of a font as desktops describe one ("Cantarell Bold 11"); absent where it names none, or the
/// "Sans" that a desktop says when nobody chose a font.
std::optional<std::string> familyOfInterfaceFont(std::string const& description);

} // namespace Platform
