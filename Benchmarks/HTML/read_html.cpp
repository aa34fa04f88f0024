// How fast HTML becomes plain text: read_html FILE TIMES reads the file so many times and prints the fastest
// reading in ms and MB/s.

#include "Platform/HTMLReader/LibXMLHTMLReader.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("read_html FILE TIMES\n", stderr);
        return 2;
    }
    std::ifstream stream(argv[1], std::ios::binary);
    std::string const html(std::istreambuf_iterator<char>(stream), {});
    Platform::LibXMLHTMLReader const reader;
    double fastest = std::numeric_limits<double>::max();
    for (int round = std::max(1, std::atoi(argv[2])); round > 0; --round) {
        auto const begin = std::chrono::steady_clock::now();
        auto const text = reader.plainText(html);
        std::chrono::duration<double, std::milli> const taken = std::chrono::steady_clock::now() - begin;
        if (!text) {
            std::fputs("the file is no UTF-8 text\n", stderr);
            return 1;
        }
        fastest = std::min(fastest, taken.count());
    }
    std::printf("%.3f ms, %.1f MB/s\n", fastest, static_cast<double>(html.size()) / fastest / 1000.0);
    return 0;
}
