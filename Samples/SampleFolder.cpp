#include "Samples/SampleFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace Samples {

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code writeAll(int file, std::string_view content) {
    while (!content.empty()) {
        auto const written = ::write(file, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return lastError();
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

std::error_code writeFile(std::filesystem::path const& path, std::string_view content) {
    auto const file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0) return lastError();
    auto failure = writeAll(file, content);
    if (::close(file) != 0 && !failure) failure = lastError();
    return failure;
}

} // namespace

std::optional<std::string> writeSampleCalendars(SampleRequest const& request,
                                                std::filesystem::path const& folder) {
    std::error_code ignored;
    std::filesystem::directory_iterator const present(folder, ignored);
    if (present != std::filesystem::directory_iterator()) {
        return fmt::format("The folder {} is not empty; nothing was written", folder.string());
    }
    std::optional<std::string> problem;
    std::filesystem::path lastFolder;
    makeSampleCalendars(request, [&](SampleFile const& file) {
        if (problem) return;
        auto const place = file.folder.empty() ? folder : folder / file.folder;
        std::error_code failure;
        if (place != lastFolder) std::filesystem::create_directories(place, failure);
        if (failure) {
            problem = fmt::format("The folder {} could not be made: {}", place.string(), failure.message());
            return;
        }
        lastFolder = place;
        failure = writeFile(place / file.name, file.content);
        if (failure) {
            problem =
                fmt::format("{} could not be written: {}", (place / file.name).string(), failure.message());
        }
    });
    return problem;
}

} // namespace Samples
