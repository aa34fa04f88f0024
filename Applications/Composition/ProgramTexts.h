#pragma once

#include "Platform/Resources/Bundle.h"
#include "Platform/Resources/StringsFile.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Composition {

/// The words of a program, from the tables of its own bundle. The English table is in the executable, too: a
/// program that was copied away from its bundles still says what is wrong. The tables are looked up and read
/// when the first text is asked for, since a program that says nothing needs none. May be asked from any
/// thread.
class ProgramTexts final {
public:
    /// `marker` is an address inside the program's code; `english` is the content of its English table, which
    /// outlives this object.
    ProgramTexts(std::string bundleName, void const* marker, std::string_view english);

    /// Speaks these languages from now on, best first. English until then. Before other threads are started.
    void useLanguages(std::vector<std::string> chosen);

    /// The text of `key` with its places filled, in the order in which the values stand here; the key itself
    /// where no table has it.
    template <typename... Values>
    [[nodiscard]] std::string text(std::string_view key, Values const&... values) const {
        return filled(key, {std::string(values)...});
    }

    /// The form of the text that goes with `count`, which is its first value.
    template <typename... Values>
    [[nodiscard]] std::string counted(std::string_view key, std::int64_t count,
                                      Values const&... values) const {
        return filledCounted(key, count, {std::to_string(count), std::string(values)...});
    }

    /// `message` of a part that speaks English, in the person's language: where the English table has it
    /// below a key that starts with "said-" or "errno-", the text of that key, with what it quotes translated
    /// likewise. What stands before a known message, such as its file and line, stays as it is, and so does
    /// one that is not known.
    [[nodiscard]] std::string translated(std::string_view message) const;

    /// What was wrong with the tables, each as "<file>:<line>: <reason>".
    [[nodiscard]] std::vector<std::string> problems() const;

private:
    [[nodiscard]] std::string filled(std::string_view key, std::vector<std::string> const& values) const;
    [[nodiscard]] std::string filledCounted(std::string_view key, std::int64_t count,
                                            std::vector<std::string> const& values) const;
    [[nodiscard]] std::optional<std::string> translatedWhole(std::string_view message) const;

    /// The program's bundle in the languages that were chosen; null where there is none, and until then.
    [[nodiscard]] Platform::Bundle const* bundle() const;
    [[nodiscard]] Platform::StringsFile const& english() const;

    std::string bundleName;
    void const* marker;
    std::string_view englishTable;
    std::optional<std::vector<std::string>> languages;
    mutable std::mutex mutex;
    // What was read so far.
    mutable std::optional<std::optional<Platform::Bundle>> readBundle;
    mutable std::optional<Platform::StringsFile> readEnglish;
};

} // namespace Composition
