#pragma once

#include "Foundation/Task.h"

#include <cstdint>

namespace Platform {

/// What came of the question.
enum class ConsentAnswer : std::uint8_t {
    yes,
    no,
    unavailable, ///< Nobody could be asked, or nobody answered.
};

/// Asks the person whether Quillora may use the calendars.
class ConsentPrompt {
public:
    virtual ~ConsentPrompt() = default;

    /// Never throws: a question that cannot be put is `unavailable`.
    virtual Foundation::Task<ConsentAnswer> ask() = 0;
};

} // namespace Platform
