#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Companion::Doctor {

/// How something does that was looked at.
enum class Health : std::uint8_t {
    works,
    note,   ///< Worth knowing, and no reason for anything not to work.
    broken, ///< Something that Quillora promises does not work.
};

/// What one look found.
struct Finding {
    std::string_view subject; ///< "keychain", the same for programs in every language.
    Health health;
    std::string text; ///< What is so, and why.
    std::string mend; ///< The command that mends it, or what to do; empty where nothing is to be done.
};

/// Findings in the order in which they are shown.
class Findings {
public:
    void works(std::string_view subject, std::string text) {
        list.push_back({.subject = subject, .health = Health::works, .text = std::move(text), .mend = {}});
    }
    void note(std::string_view subject, std::string text, std::string mend = {}) {
        list.push_back(
            {.subject = subject, .health = Health::note, .text = std::move(text), .mend = std::move(mend)});
    }
    void broken(std::string_view subject, std::string text, std::string mend) {
        list.push_back(
            {.subject = subject, .health = Health::broken, .text = std::move(text), .mend = std::move(mend)});
    }

    [[nodiscard]] std::vector<Finding> const& all() const { return list; }

private:
    std::vector<Finding> list;
};

} // namespace Companion::Doctor
