#pragma once

#include "Platform/Resources/TextProvider.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace Platform {

/// Texts from a table given by the caller; a key that it lacks is its own text.
class TableTextProvider final : public TextProvider {
public:
    TableTextProvider() = default;
    explicit TableTextProvider(std::map<std::string, std::string, std::less<>> texts)
        : texts(std::move(texts)) {}
    /// Of keys and texts written out.
    explicit TableTextProvider(std::initializer_list<std::pair<std::string const, std::string>> texts)
        : texts(texts) {}

    [[nodiscard]] std::string text(std::string_view key) const override {
        auto const entry = texts.find(key);
        return entry == texts.end() ? std::string(key) : entry->second;
    }

private:
    std::map<std::string, std::string, std::less<>> texts;
};

} // namespace Platform
