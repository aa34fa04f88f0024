#pragma once

#include "PrivateHome.h"

#include <string>
#include <vector>

/// What `quillora doctor --json` said.
struct DoctorReport {
    struct Check {
        std::string check;
        std::string health;
        std::string text;
        std::string mend;
    };

    /// Examines the home, and expects that this changes nothing in it and that the exit code fits.
    static DoctorReport of(PrivateHome const& home);
    /// The same from what a run of it yielded.
    static DoctorReport from(ProgramResult const& result);

    /// The first check of that name that is broken, else one with a note, else the first; an empty one when
    /// there is none.
    [[nodiscard]] Check worst(std::string const& name) const;
    /// The names of the broken ones, each once, in order.
    [[nodiscard]] std::vector<std::string> broken() const;

    std::vector<Check> checks;
};
