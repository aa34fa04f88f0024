#pragma once

#include "Platform/EventStore/EKEventStore.h"
#include "Platform/Files/FileManager.h"

#include <expected>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Platform {

/// What the person answered when Quillora asked for the calendars: calendar-access.json in the configuration
/// folder, one JSON integer, the raw value of EKAuthorizationStatus. It is read anew at each call.
class ConsentRecord {
public:
    ConsentRecord(std::filesystem::path directory, std::shared_ptr<FileManager const> files);

    /// Not determined when there is no file, or none that can be read. A value that only a newer version
    /// knows comes back as it stands, so that it never counts as granted.
    [[nodiscard]] EKAuthorizationStatus status() const;

    /// Why a record that is there tells nothing: it cannot be read, or, as std::errc::bad_message, holds no
    /// answer. Clear where there is an answer or no record at all.
    [[nodiscard]] std::error_code failure() const;

    /// Remembers an answer. On an error the old record stays.
    [[nodiscard]] std::error_code record(EKAuthorizationStatus status) const;

    /// Forgets the answer: the next request asks again. Without a record it does nothing.
    [[nodiscard]] std::error_code reset() const;

    [[nodiscard]] std::filesystem::path file() const;

private:
    [[nodiscard]] std::expected<EKAuthorizationStatus, std::error_code> answer() const;

    std::filesystem::path directory;
    std::shared_ptr<FileManager const> files;
};

} // namespace Platform
