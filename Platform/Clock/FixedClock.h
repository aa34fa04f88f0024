#pragma once

#include "Platform/Clock/Clock.h"

namespace Platform {

/// A clock that stands at one moment, for pictures and `--at`; a test may move it.
class FixedClock final : public Clock {
public:
    explicit FixedClock(Foundation::Date moment) : moment(moment) {}

    [[nodiscard]] Foundation::Date now() const override { return moment; }
    void set(Foundation::Date next) { moment = next; }

private:
    Foundation::Date moment;
};

} // namespace Platform
