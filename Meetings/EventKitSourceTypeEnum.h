#pragma once

#include "Platform/EventStore/EKSource.h"

#include <string_view>

/// The names of the kinds of account.
namespace Meetings::EventKitSourceTypeEnum {

/// A fixed Spanish text; a kind that is not known is "Desconocido".
std::string_view description(Platform::EKSourceType type);

} // namespace Meetings::EventKitSourceTypeEnum
