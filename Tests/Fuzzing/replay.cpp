// Runs a fuzz target's check over the files of a folder, in the order of their names: replay FOLDER. What a
// fuzzer once found stays found, also where no fuzzer can be built.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("replay FOLDER\n", stderr);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    for (auto const& entry : std::filesystem::directory_iterator(argv[1]))
        files.push_back(entry.path());
    if (files.empty()) {
        std::fprintf(stderr, "%s holds nothing to replay\n", argv[1]);
        return 1;
    }
    std::ranges::sort(files);
    for (auto const& file : files) {
        std::ifstream stream(file, std::ios::binary);
        std::string const bytes(std::istreambuf_iterator<char>(stream), {});
        // Told before, so that the last one named is the one that ended the process.
        std::fprintf(stderr, "%s\n", file.filename().c_str());
        LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
    }
    return 0;
}
