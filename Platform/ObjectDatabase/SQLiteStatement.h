#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Platform {

/// A prepared statement, its values bound in order. Throws std::runtime_error with the database's own reason.
class SQLiteStatement {
public:
    SQLiteStatement(sqlite3* connection, std::string_view text) : connection(connection) {
        sqlite3_stmt* made = nullptr;
        require(sqlite3_prepare_v2(connection, text.data(), static_cast<int>(text.size()), &made, nullptr));
        statement.reset(made);
    }

    SQLiteStatement& with(std::string_view value) {
        require(sqlite3_bind_text64(statement.get(), ++bound, value.data(), value.size(), SQLITE_TRANSIENT,
                                    SQLITE_UTF8));
        return *this;
    }
    SQLiteStatement& with(std::int64_t value) {
        require(sqlite3_bind_int64(statement.get(), ++bound, value));
        return *this;
    }

    /// Whether there is a further row.
    bool step() {
        auto const code = sqlite3_step(statement.get());
        if (code == SQLITE_ROW) return true;
        if (code != SQLITE_DONE) require(code);
        return false;
    }

    [[nodiscard]] bool isNull(int column) const {
        return sqlite3_column_type(statement.get(), column) == SQLITE_NULL;
    }
    [[nodiscard]] std::int64_t integer(int column) const {
        return sqlite3_column_int64(statement.get(), column);
    }
    [[nodiscard]] std::string text(int column) const {
        auto const* start = reinterpret_cast<char const*>(sqlite3_column_text(statement.get(), column));
        if (start == nullptr) return {};
        return {start, static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), column))};
    }

private:
    struct Finalizing {
        void operator()(sqlite3_stmt* prepared) const { sqlite3_finalize(prepared); }
    };

    void require(int code) const {
        if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(connection));
    }

    sqlite3* connection;
    std::unique_ptr<sqlite3_stmt, Finalizing> statement;
    int bound = 0;
};

} // namespace Platform
