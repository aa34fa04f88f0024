#include "Applications/Manual/ShellText.h"

#include <algorithm>
#include <utility>

namespace Manual {

std::string shellQuoted(std::string_view text) {
    std::string word = "'";
    for (char const character : text) {
        if (character == '\'') {
            word += "'\\''";
        } else {
            word += character;
        }
    }
    return word + "'";
}

std::string lastWord(std::string_view path) {
    return std::string(path.substr(path.rfind(' ') + 1));
}

std::string_view kindName(Companion::ValueKind kind) {
    using Companion::ValueKind;
    switch (kind) {
    case ValueKind::text:
    case ValueKind::number:
    case ValueKind::day:
    case ValueKind::moment: return "none";
    case ValueKind::zone: return "zone";
    case ValueKind::file: return "file";
    case ValueKind::folder: return "folder";
    case ValueKind::path: return "file";
    case ValueKind::calendar: return "calendar";
    case ValueKind::source: return "source";
    }
    std::unreachable();
}

std::vector<std::string> pathsOfGroups() {
    std::vector<std::string> paths = {""};
    for (auto const& command : Companion::commandTable())
        if (command.run == nullptr) paths.push_back(command.path);
    return paths;
}

std::string choiceWords(std::vector<std::string> const& choices) {
    std::string words;
    for (auto const& choice : choices)
        words += (words.empty() ? "" : " ") + choice;
    return words;
}

std::string nameOf(std::string_view path) {
    std::string name(path);
    std::ranges::replace_if(name, [](char character) { return character == ' ' || character == '-'; }, '_');
    return name;
}

} // namespace Manual
