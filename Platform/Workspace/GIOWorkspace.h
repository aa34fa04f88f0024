#pragma once

#include "Platform/Workspace/Workspace.h"

#include <optional>

namespace Platform {

/// The workspace of a freedesktop.org desktop, on GLib's default main context.
class GIOWorkspace final : public Workspace {
public:
    /// Without the address of a session bus no application can be activated.
    explicit GIOWorkspace(std::optional<std::string> busAddress);

    void open(Foundation::URL const& link, Done done) override;

    /// By the desktop's associations of media types with applications (mimeapps.list).
    [[nodiscard]] bool hasProgram(std::string const& contentType) const override;
    void startProgram(std::string const& contentType, Done done) override;

    /// By org.freedesktop.Application; the object's path is made of the identifier, as that standard says.
    void activateApplication(std::string const& identifier, Done done) override;

private:
    std::optional<std::string> busAddress;
};

} // namespace Platform
