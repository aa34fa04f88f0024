#pragma once

#include <cstdint>
#include <string>

namespace Platform {

/// Why a database did not open, was not deleted, or did not carry out an operation.
struct ObjectDatabaseError {
    enum class Kind : std::uint8_t {
        noLocation,         ///< Nobody said where the file is.
        keyLength,          ///< The key is not 64 bytes.
        wrongKeyOrDamaged,  ///< Written with another key, or not as it was written: no one can tell which.
        foreignFile,        ///< Not a database of this engine, or of a later format.
        schemaIsNewer,      ///< Written by a program with a later schema.
        migrationFailed,    ///< The earlier schema could not be brought up to date.
        unreadable,         ///< The file or its folder cannot be read or made, and waiting did not help.
        busy,               ///< Another program kept the database locked for too long.
        storageFailed,      ///< The disk is full, or the system lacks what the operation needs.
        readOnly,           ///< Opened for reading only, or where nothing may be written.
        quarantineFailed,   ///< The files could not be moved out of the way.
        transactionRefused, ///< The body of a write transaction gave up.
    };

    Kind kind;
    std::string localizedDescription; ///< English, one sentence; holds no secret.

    bool operator==(ObjectDatabaseError const&) const = default;
};

} // namespace Platform
