#include "Platform/EventStore/Folder/ConsentRecord.h"

#include "Foundation/JSON.h"

#include <string>
#include <utility>

namespace Platform {

namespace {

bool isAbsence(std::error_code failure) {
    return failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory;
}

} // namespace

ConsentRecord::ConsentRecord(std::filesystem::path directory, std::shared_ptr<FileManager const> files)
    : directory(std::move(directory)),
      files(std::move(files)) {}

std::filesystem::path ConsentRecord::file() const {
    return directory / "calendar-access.json";
}

std::expected<EKAuthorizationStatus, std::error_code> ConsentRecord::answer() const {
    auto const document = files->contents(file(), largestPreferenceFile);
    if (!document) {
        if (isAbsence(document.error())) return EKAuthorizationStatus::notDetermined;
        return std::unexpected(document.error());
    }
    auto const damaged = std::unexpected(std::make_error_code(std::errc::bad_message));
    auto const value = Foundation::JSON::parse(*document);
    if (!value) return damaged;
    auto const number = Foundation::JSON::integer(*value);
    if (!number || *number < 0) return damaged;
    return static_cast<EKAuthorizationStatus>(*number);
}

EKAuthorizationStatus ConsentRecord::status() const {
    return answer().value_or(EKAuthorizationStatus::notDetermined);
}

std::error_code ConsentRecord::failure() const {
    auto const found = answer();
    return found ? std::error_code() : found.error();
}

std::error_code ConsentRecord::record(EKAuthorizationStatus status) const {
    if (auto const failure = files->createDirectory(directory)) return failure;
    return files->writeAtomically(file(), std::to_string(static_cast<std::int64_t>(status)));
}

std::error_code ConsentRecord::reset() const {
    auto const failure = files->removeItem(file());
    return isAbsence(failure) ? std::error_code() : failure;
}

} // namespace Platform
