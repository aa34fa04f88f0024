#pragma once

#include "Platform/EventStore/ConsentPrompt.h"

#include <cstdint>

namespace Platform {

/// Gives one answer without asking anybody, and counts how often it was asked.
class GivenConsentPrompt final : public ConsentPrompt {
public:
    explicit GivenConsentPrompt(ConsentAnswer answer) : answer(answer) {}

    Foundation::Task<ConsentAnswer> ask() override {
        ++timesAsked;
        co_return answer;
    }

    [[nodiscard]] std::int64_t askedTimes() const { return timesAsked; }

private:
    ConsentAnswer answer;
    std::int64_t timesAsked = 0;
};

} // namespace Platform
