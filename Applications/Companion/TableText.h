#pragma once

#include <string>
#include <string_view>

namespace Companion {

/// A text of the program's table, looked up when it is read. What help says of commands and options is held
/// so: most runs show none of it and need not read the table for it.
class TableText {
public:
    /// `key` is a literal: it is not copied.
    explicit TableText(std::string_view key) : key(key) {}

    /// The words, in the program's language.
    [[nodiscard]] std::string text() const;

    // As words it may stand wherever these are wanted.
    operator std::string() const { return text(); }

private:
    std::string_view key;
};

} // namespace Companion
