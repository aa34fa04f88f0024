#pragma once

#include "Foundation/URL.h"

#include <functional>
#include <string>

namespace Platform {

/// The desktop's way to bring other programs before the person. For the main loop's thread, which is also
/// told the outcome, perhaps within the call: an empty text, or why nothing opened.
class Workspace {
public:
    using Done = std::function<void(std::string const& failure)>;

    virtual ~Workspace() = default;

    /// Opens a link in the program that the person chose for its kind.
    virtual void open(Foundation::URL const& link, Done done) = 0;

    /// Whether there is a program for this kind of content ("text/calendar"): the one that the person chose,
    /// else one that offers itself.
    [[nodiscard]] virtual bool hasProgram(std::string const& contentType) const = 0;

    /// Starts the program for this kind of content, with nothing to open.
    virtual void startProgram(std::string const& contentType, Done done) = 0;

    /// Starts the application of that name on the session bus, or brings its window forward.
    virtual void activateApplication(std::string const& identifier, Done done) = 0;
};

} // namespace Platform
