#pragma once

#include <string>
#include <string_view>

/// The rules of announcement templates.
namespace Meetings::AlarmMessageDomain {

/// Stands for the meet's name.
inline constexpr std::string_view eventPlaceholder = "{event}";

/// Throws AlarmMessageDomainError when a text that is not empty bears no placeholder. An empty one means that
/// no template is set.
void validate(std::string_view text);

/// `text` with the name in the place of each placeholder, matched byte for byte. A placeholder within the
/// name stays.
std::string render(std::string_view text, std::string_view meetName);

} // namespace Meetings::AlarmMessageDomain
