#pragma once

namespace Platform {
class HTMLReader;
}

namespace Composition {

/// What reads the HTML of a meet's description. Apart from the other live parts, because its library is large
/// and few programs need it. May be asked from any thread.
Platform::HTMLReader const& liveHTMLReader();

} // namespace Composition
