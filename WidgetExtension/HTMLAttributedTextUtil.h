#pragma once

#include "Platform/HTMLReader/HTMLReader.h"
#include "Platform/WidgetHost/MainExecutor.h"
#include "WidgetExtension/AttributedString.h"

#include <optional>
#include <string_view>

/// Turns a meet's description, which is often HTML, into one short readable line.
namespace WidgetExtension::HTMLAttributedTextUtil {

/// The first line of `text` that says something, without the dashes and bullets before it. A text without "<"
/// or one that is not UTF-8 comes back whole, as it is; one in which no line says anything comes back
/// rendered and trimmed. Absent only for an empty text. May be called on any thread; HTML is rendered on the
/// main one, which must not be waiting for the caller.
std::optional<AttributedString> parse(std::string_view text, Platform::HTMLReader const& reader,
                                      Platform::MainExecutor& mainExecutor);

} // namespace WidgetExtension::HTMLAttributedTextUtil
