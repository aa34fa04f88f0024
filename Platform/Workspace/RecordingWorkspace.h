#pragma once

#include "Platform/Workspace/Workspace.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Platform {

/// Keeps what it was to open, and opens nothing.
class RecordingWorkspace final : public Workspace {
public:
    /// From now on nothing opens, for this reason.
    void failsWith(std::string reason) { failure = std::move(reason); }

    void open(Foundation::URL const& link, Done done) override { take(link.absoluteString, done); }
    [[nodiscard]] bool hasProgram(std::string const& contentType) const override {
        return programs.contains(contentType);
    }
    void startProgram(std::string const& contentType, Done done) override {
        take(programs.at(contentType), done);
    }
    void activateApplication(std::string const& identifier, Done done) override { take(identifier, done); }

    /// Programs by the kind of content that they are for; none until a test says so.
    std::map<std::string, std::string> programs;

    /// Links, programs and applications, in order.
    std::vector<std::string> opened;

private:
    void take(std::string const& what, Done const& done) {
        if (failure.empty()) opened.push_back(what);
        if (done) done(failure);
    }

    std::string failure;
};

} // namespace Platform
