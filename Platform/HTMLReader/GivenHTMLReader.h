#pragma once

#include "Platform/HTMLReader/HTMLReader.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace Platform {

/// Answers with the text it was given, and keeps what it was asked. Without a text it fails each time.
class GivenHTMLReader final : public HTMLReader {
public:
    struct Reading {
        std::string html;
        std::thread::id thread;
    };

    explicit GivenHTMLReader(std::optional<std::string> text) : text(std::move(text)) {}

    [[nodiscard]] std::optional<std::string> plainText(std::string_view html) const override {
        std::scoped_lock const lock(mutex);
        history.push_back({.html = std::string(html), .thread = std::this_thread::get_id()});
        return text;
    }

    /// What was read, in order, and on which thread.
    [[nodiscard]] std::vector<Reading> readings() const {
        std::scoped_lock const lock(mutex);
        return history;
    }

private:
    std::optional<std::string> text;
    mutable std::mutex mutex;
    mutable std::vector<Reading> history;
};

} // namespace Platform
