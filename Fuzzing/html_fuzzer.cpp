// Any bytes are a description: reading it as HTML ends, quickly, with text that holds nothing but text.

#include "Foundation/Text.h"
#include "Platform/HTMLReader/LibXMLHTMLReader.h"
#include "Platform/WidgetHost/CallingThreadMainExecutor.h"
#include "WidgetExtension/HTMLAttributedTextUtil.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

bool holdsControl(std::string_view text) {
    for (char const character : text) {
        auto const byte = static_cast<unsigned char>(character);
        if ((byte < 0x20 && byte != '\t' && byte != '\n') || byte == 0x7F) return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size > 65536) return 0;
    std::string_view const html(reinterpret_cast<char const*>(data), size);
    Platform::LibXMLHTMLReader const reader;
    auto const text = reader.plainText(html);
    require(text.has_value() == Foundation::Text::isValidUTF8(html),
            "all UTF-8 texts and no others are read");
    if (text) {
        require(Foundation::Text::isValidUTF8(*text), "what was read is UTF-8");
        require(!holdsControl(*text), "no control character comes through");
    }

    Platform::CallingThreadMainExecutor main;
    auto const line = WidgetExtension::HTMLAttributedTextUtil::parse(html, reader, main);
    require(line.has_value() == !html.empty(), "only an empty text has no line");
    return 0;
}
