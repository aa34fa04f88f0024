#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace WidgetExtension {

/// `format` with its first integer placeholder ("%d", "%ld", "%lld", also as "%1$lld") replaced by `value` in
/// plain decimal, and "%%" by "%". Everything else stays as it is: a text from a table never reaches printf.
std::string localizedFormat(std::string_view format, std::int64_t value);

} // namespace WidgetExtension
