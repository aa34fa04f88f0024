#include "Applications/Companion/Texts.h"
#include "Applications/Manual/BashCompletion.h"
#include "Applications/Manual/FishCompletion.h"
#include "Applications/Manual/ManualPage.h"
#include "Applications/Manual/ZshCompletion.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

void write(std::filesystem::path const& path, std::string_view content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << content;
    if (!file.flush()) throw std::runtime_error(path.string() + " could not be written");
}

void writePages(std::filesystem::path const& folder, std::string_view date) {
    auto const pageOf = [&](Companion::Command const* command) {
        write(folder / "man1" / (Manual::pageName(command) + ".1"),
              Manual::manualPage(command, QUILLORA_VERSION, date));
    };
    pageOf(nullptr);
    for (auto const& command : Companion::commandTable())
        pageOf(&command);
}

} // namespace

/// Writes the manual pages and completions of the companion below a folder, for CMake to install.
///
/// The command table speaks one language for the length of a process, so a page in another language takes
/// another call.
int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) {
        std::fputs("usage: quillora-manual FOLDER DATE LANGUAGE\n", stderr);
        return 2;
    }
    std::filesystem::path const folder(arguments[1]);
    std::string const language(arguments[3]);
    try {
        Companion::Texts::useLanguages({language});
        if (language != "en") {
            writePages(folder / "man" / language, arguments[2]);
            return 0;
        }
        writePages(folder / "man", arguments[2]);
        write(folder / "completions" / "bash-completion" / "completions" / "quillora",
              Manual::bashCompletion());
        write(folder / "completions" / "zsh" / "site-functions" / "_quillora", Manual::zshCompletion());
        write(folder / "completions" / "fish" / "vendor_completions.d" / "quillora.fish",
              Manual::fishCompletion());
        return 0;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "quillora-manual: %s\n", failure.what());
        return 1;
    }
}
