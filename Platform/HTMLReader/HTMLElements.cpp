#include "Platform/HTMLReader/HTMLElements.h"

#include <algorithm>

namespace Platform {

namespace {

struct NamedElement {
    std::string_view name;
    HTMLElement element;
};

// In the order of their names. What is missing here is a span.
constexpr NamedElement namedElements[] = {
    {"address", HTMLElement::division},
    {"area", HTMLElement::nothing},
    {"article", HTMLElement::division},
    {"aside", HTMLElement::division},
    {"audio", HTMLElement::hiddenInline},
    {"base", HTMLElement::headContent},
    {"blockquote", HTMLElement::division},
    {"body", HTMLElement::document},
    {"br", HTMLElement::lineBreak},
    {"canvas", HTMLElement::hiddenInline},
    {"caption", HTMLElement::tableCaption},
    {"center", HTMLElement::division},
    {"col", HTMLElement::nothing},
    {"datalist", HTMLElement::hiddenInline},
    {"dd", HTMLElement::definition},
    {"details", HTMLElement::division},
    {"dialog", HTMLElement::division},
    {"dir", HTMLElement::unorderedList},
    {"div", HTMLElement::division},
    {"dl", HTMLElement::definitionList},
    {"dt", HTMLElement::definitionTerm},
    {"embed", HTMLElement::nothing},
    {"fieldset", HTMLElement::division},
    {"figcaption", HTMLElement::division},
    {"figure", HTMLElement::division},
    {"footer", HTMLElement::division},
    {"form", HTMLElement::division},
    {"frame", HTMLElement::nothing},
    {"h1", HTMLElement::division},
    {"h2", HTMLElement::division},
    {"h3", HTMLElement::division},
    {"h4", HTMLElement::division},
    {"h5", HTMLElement::division},
    {"h6", HTMLElement::division},
    {"head", HTMLElement::head},
    {"header", HTMLElement::division},
    {"hgroup", HTMLElement::division},
    {"hr", HTMLElement::rule},
    {"html", HTMLElement::document},
    {"iframe", HTMLElement::rawText},
    {"image", HTMLElement::nothing},
    {"img", HTMLElement::nothing},
    {"input", HTMLElement::nothing},
    {"legend", HTMLElement::division},
    {"li", HTMLElement::listItem},
    {"link", HTMLElement::headContent},
    {"listing", HTMLElement::preformatted},
    {"main", HTMLElement::division},
    {"menu", HTMLElement::unorderedList},
    {"meta", HTMLElement::headContent},
    {"nav", HTMLElement::division},
    {"noembed", HTMLElement::rawText},
    {"noframes", HTMLElement::rawText},
    {"ol", HTMLElement::orderedList},
    {"optgroup", HTMLElement::division},
    {"option", HTMLElement::division},
    {"p", HTMLElement::paragraph},
    {"param", HTMLElement::nothing},
    {"plaintext", HTMLElement::preformatted},
    {"pre", HTMLElement::preformatted},
    {"script", HTMLElement::rawText},
    {"search", HTMLElement::division},
    {"section", HTMLElement::division},
    {"select", HTMLElement::division},
    {"source", HTMLElement::nothing},
    {"style", HTMLElement::rawText},
    {"summary", HTMLElement::division},
    {"svg", HTMLElement::hiddenInline},
    {"table", HTMLElement::table},
    {"tbody", HTMLElement::tableSection},
    {"td", HTMLElement::tableCell},
    {"template", HTMLElement::hiddenBlock},
    {"tfoot", HTMLElement::tableSection},
    {"th", HTMLElement::tableCell},
    {"thead", HTMLElement::tableSection},
    {"title", HTMLElement::rawText},
    {"tr", HTMLElement::tableRow},
    {"track", HTMLElement::nothing},
    {"ul", HTMLElement::unorderedList},
    {"video", HTMLElement::hiddenInline},
    {"wbr", HTMLElement::nothing},
    {"xmp", HTMLElement::preformatted},
};
static_assert(std::ranges::is_sorted(namedElements, {}, &NamedElement::name));

} // namespace

HTMLElement elementNamed(std::string_view name) {
    auto const* const found = std::ranges::lower_bound(namedElements, name, {}, &NamedElement::name);
    bool const isKnown = found != std::end(namedElements) && found->name == name;
    return isKnown ? found->element : HTMLElement::span;
}

std::string_view canonicalName(HTMLElement element) {
    switch (element) {
    case HTMLElement::division:
    case HTMLElement::hiddenBlock: return "div";
    case HTMLElement::span:
    case HTMLElement::hiddenInline: return "span";
    case HTMLElement::paragraph: return "p";
    case HTMLElement::preformatted: return "pre";
    case HTMLElement::unorderedList: return "ul";
    case HTMLElement::orderedList: return "ol";
    case HTMLElement::listItem: return "li";
    case HTMLElement::definitionList: return "dl";
    case HTMLElement::definitionTerm: return "dt";
    case HTMLElement::definition: return "dd";
    case HTMLElement::table: return "table";
    case HTMLElement::tableCaption: return "caption";
    case HTMLElement::tableSection: return "tbody";
    case HTMLElement::tableRow: return "tr";
    case HTMLElement::tableCell: return "td";
    case HTMLElement::lineBreak: return "br";
    case HTMLElement::rule: return "hr";
    case HTMLElement::document:
    case HTMLElement::head:
    case HTMLElement::headContent:
    case HTMLElement::rawText:
    case HTMLElement::nothing: return "";
    }
    return "";
}

} // namespace Platform
