#pragma once

#include <cairo.h>
#include <pango/pango.h>

#include <memory>

/// Owners of what Cairo and Pango hand out. Only the sources of the painter include this.
namespace Platform::CairoHandles {

struct Release {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
    void operator()(PangoContext* context) const { g_object_unref(context); }
    void operator()(PangoLayout* layout) const { g_object_unref(layout); }
    void operator()(PangoLayoutIter* iterator) const { pango_layout_iter_free(iterator); }
    void operator()(PangoFontDescription* description) const { pango_font_description_free(description); }
    void operator()(PangoAttrList* attributes) const { pango_attr_list_unref(attributes); }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

} // namespace Platform::CairoHandles
