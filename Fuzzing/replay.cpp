// Runs a fuzz target once over each file of the folders that are named: without a fuzzing engine, in every
// build, so that what was found once stays found.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int count, char** arguments) {
    int replayed = 0;
    for (int index = 1; index < count; ++index) {
        for (auto const& entry : std::filesystem::directory_iterator(arguments[index])) {
            std::ifstream file(entry.path(), std::ios::binary);
            std::string const content{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(content.data()), content.size());
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
