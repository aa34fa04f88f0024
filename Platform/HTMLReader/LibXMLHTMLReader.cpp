#include "Platform/HTMLReader/LibXMLHTMLReader.h"

#include "Foundation/Text.h"
#include "Platform/HTMLReader/HTMLLimits.h"
#include "Platform/HTMLReader/ScrubbedHTML.h"
#include "Platform/HTMLReader/VisibleText.h"

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>

#include <charconv>
#include <memory>

namespace Platform {

namespace {

struct ContextDeleter {
    void operator()(htmlParserCtxtPtr context) const { htmlFreeParserCtxt(context); }
};
using Context = std::unique_ptr<htmlParserCtxt, ContextDeleter>;

std::string_view view(xmlChar const* text) {
    return text == nullptr ? std::string_view() : std::string_view(reinterpret_cast<char const*>(text));
}

struct Reading {
    htmlParserCtxtPtr context;
    VisibleText visible;
    std::size_t depth = 0;
};

void startElement(void* user, xmlChar const* name, xmlChar const** attributes) {
    auto& reading = *static_cast<Reading*>(user);
    if (++reading.depth > HTMLLimits::depth) return xmlStopParser(reading.context);
    bool isHidden = false;
    std::optional<std::int32_t> number;
    for (; attributes != nullptr && attributes[0] != nullptr; attributes += 2) {
        if (view(attributes[0]) == "hidden") isHidden = true;
        if (view(attributes[0]) != "value") continue;
        auto const digits = view(attributes[1]);
        std::from_chars(digits.data(), digits.data() + digits.size(), number.emplace(0));
    }
    reading.visible.startElement(view(name), isHidden, number);
}

void endElement(void* user, xmlChar const* name) {
    auto& reading = *static_cast<Reading*>(user);
    --reading.depth;
    reading.visible.endElement(view(name));
}

void characters(void* user, xmlChar const* text, int length) {
    static_cast<Reading*>(user)->visible.characters(
        {reinterpret_cast<char const*>(text), static_cast<std::size_t>(length)});
}

} // namespace

std::optional<std::string> LibXMLHTMLReader::plainText(std::string_view html) const {
    if (!Foundation::Text::isValidUTF8(html)) return std::nullopt;
    auto const scrubbed = scrubbedHTML(html);
    Context const context(htmlCreateMemoryParserCtxt(scrubbed.data(), static_cast<int>(scrubbed.size())));
    if (!context) return std::nullopt;
    htmlCtxtUseOptions(context.get(), HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                          HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC);
    if (xmlSwitchEncoding(context.get(), XML_CHAR_ENCODING_UTF8) != 0) return std::nullopt;

    Reading reading{.context = context.get(), .visible = {}};
    // The events alone: no tree is built.
    htmlSAXHandler handler{};
    handler.startElement = startElement;
    handler.endElement = endElement;
    handler.characters = characters;
    handler.ignorableWhitespace = characters;
    *context->sax = handler;
    context->userData = &reading;
    htmlParseDocument(context.get());
    return reading.visible.text();
}

} // namespace Platform
