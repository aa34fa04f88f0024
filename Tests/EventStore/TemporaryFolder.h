#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

/// A folder of its own for one test, gone with its content at the end.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "quillora-test-XXXXXX";
        if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
        folder = std::filesystem::canonical(name);
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    [[nodiscard]] std::filesystem::path const& path() const { return folder; }
    std::filesystem::path operator/(std::string_view name) const { return folder / name; }

    /// Writes a file in place, with the folders above it.
    std::filesystem::path write(std::string_view name, std::string_view content) const {
        auto const file = folder / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream stream(file, std::ios::binary | std::ios::trunc);
        stream << content;
        stream.close();
        if (!stream) throw std::runtime_error("cannot write " + file.string());
        return file;
    }

private:
    std::filesystem::path folder;
};
