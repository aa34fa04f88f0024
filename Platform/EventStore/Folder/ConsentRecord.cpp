#include "Platform/EventStore/Folder/ConsentRecord.h"

#include "Foundation/JSON.h"

#include <string>
#include <utility>

namespace Platform {

ConsentRecord::ConsentRecord(std::filesystem::path directory, std::shared_ptr<FileManager const> files)
    : directory(std::move(directory)),
      files(std::move(files)) {}

std::filesystem::path ConsentRecord::file() const {
    return directory / "calendar-access.json";
}

EKAuthorizationStatus ConsentRecord::status() const {
    auto const document = files->contents(file(), largestPreferenceFile);
    if (!document) return EKAuthorizationStatus::notDetermined;
    auto const value = Foundation::JSON::parse(*document);
    if (!value) return EKAuthorizationStatus::notDetermined;
    auto const number = Foundation::JSON::integer(*value);
    if (!number || *number < 0) return EKAuthorizationStatus::notDetermined;
    return static_cast<EKAuthorizationStatus>(*number);
}

std::error_code ConsentRecord::record(EKAuthorizationStatus status) const {
    if (auto const failure = files->createDirectory(directory)) return failure;
    return files->writeAtomically(file(), std::to_string(static_cast<std::int64_t>(status)));
}

std::error_code ConsentRecord::reset() const {
    auto const failure = files->removeItem(file());
    if (failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory) return {};
    return failure;
}

} // namespace Platform
