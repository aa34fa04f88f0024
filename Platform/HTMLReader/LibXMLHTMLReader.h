#pragma once

#include "Platform/HTMLReader/HTMLReader.h"

namespace Platform {

/// Reads HTML with libxml2, event by event. Nothing is fetched and no script runs. Size, tags and depth are
/// bounded by HTMLLimits, and the time grows with the size alone, whatever the text holds.
class LibXMLHTMLReader final : public HTMLReader {
public:
    [[nodiscard]] std::optional<std::string> plainText(std::string_view html) const override;
};

} // namespace Platform
