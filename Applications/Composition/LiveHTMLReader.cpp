#include "Applications/Composition/LiveHTMLReader.h"

#include "Platform/HTMLReader/LibXMLHTMLReader.h"

namespace Composition {

Platform::HTMLReader const& liveHTMLReader() {
    // It keeps nothing between two texts.
    static Platform::LibXMLHTMLReader const reader;
    return reader;
}

} // namespace Composition
