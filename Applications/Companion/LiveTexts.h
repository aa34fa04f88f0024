#pragma once

#include <cstdint>
#include <string>

/// What is said where a day is followed.
namespace Companion::Texts {

std::string beyondTheButtons(std::int64_t offset, std::int64_t furthest);
std::string liveNeedsTerminal();
std::string liveNeedsAnotherTerminal();
std::string liveKeys();

} // namespace Companion::Texts
