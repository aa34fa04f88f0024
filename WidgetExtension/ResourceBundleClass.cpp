#include "WidgetExtension/ResourceBundleClass.h"

namespace WidgetExtension {

void const* ResourceBundleClass::marker() {
    static constexpr char address = 0;
    return &address;
}

} // namespace WidgetExtension
