#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

/// A private folder for one test; gone with this object.
class TemporaryFolder {
public:
    TemporaryFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "quillora-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
    }
    ~TemporaryFolder() {
        std::error_code failure;
        std::filesystem::remove_all(folder, failure);
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    [[nodiscard]] std::filesystem::path const& path() const { return folder; }

    /// Writes a file and the folders above it.
    std::filesystem::path place(std::filesystem::path const& relative, std::string_view content) const {
        auto const file = folder / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

    /// The names of everything in the folder, hidden files too.
    [[nodiscard]] std::set<std::string> names() const {
        std::set<std::string> found;
        for (auto const& entry : std::filesystem::directory_iterator(folder))
            found.insert(entry.path().filename());
        return found;
    }

private:
    std::filesystem::path folder;
};
