#include "Applications/Manual/ZshCompletion.h"

#include "Applications/Companion/Texts.h"
#include "Applications/Manual/ShellText.h"

#include <fmt/format.h>

namespace Manual {

namespace {

using Companion::Command;
using Companion::CommandArgument;
using Companion::CommandOption;

std::string const helpers = R"shell(
_quillora_members() {
    local -a found
    found=(${(f)"$(quillora ${@:2} --json 2>/dev/null </dev/null | grep -o "\"$1\":\"[^\"]*\"" | cut -d '"' -f 4)"})
    compadd -a found
}
_quillora_calendars() { _quillora_members eciId calendars list }
_quillora_sources() { _quillora_members id sources list }
_quillora_zones() { compadd -- ${(f)"$(timedatectl list-timezones 2>/dev/null)"} }

)shell";

// What is special inside the brackets and between the colons of a specification.
std::string escaped(std::string_view text) {
    std::string result;
    for (char const character : text) {
        if (character == '[' || character == ']' || character == ':' || character == '\\') result += '\\';
        result += character;
    }
    return result;
}

std::string actionOf(Companion::ValueKind kind) {
    auto const name = kindName(kind);
    if (name == "file") return "_files";
    if (name == "folder") return "_files -/";
    if (name == "none") return " ";
    return fmt::format("_quillora_{}s", name);
}

std::string actionOf(Companion::ValueKind kind, std::vector<std::string> const& choices) {
    return choices.empty() ? actionOf(kind) : "(" + choiceWords(choices) + ")";
}

std::string specification(CommandOption const& option) {
    std::string excluded = option.name;
    for (auto const& other : option.excludes)
        excluded += " " + other;
    auto text = fmt::format("({}){}[{}]", excluded, option.name + (option.valueName.empty() ? "" : "="),
                            escaped(option.help.text()));
    if (!option.valueName.empty())
        text += fmt::format(":{}:{}", escaped(option.valueName), actionOf(option.kind, option.choices));
    return shellQuoted(text);
}

std::string specification(CommandArgument const& argument) {
    using Count = CommandArgument::Count;
    auto const* const colons = argument.count == Count::oneOrMore   ? "*:"
                               : argument.count == Count::atMostOne ? "::"
                                                                    : ":";
    return shellQuoted(colons + escaped(argument.name) + ":" + actionOf(argument.kind, argument.choices));
}

std::string commandFunction(Command const& command) {
    std::string text = fmt::format("_quillora_at_{}() {{\n    _arguments -s", nameOf(command.path));
    for (auto const& option : command.options)
        text += " \\\n        " + specification(option);
    text += " \\\n        " + shellQuoted("(- *)--help[" + escaped(Companion::Texts::helpOption()) + "]");
    for (auto const& argument : command.arguments)
        text += " \\\n        " + specification(argument);
    return text + "\n}\n\n";
}

// A group: its members with what they are for, then whatever the chosen one takes.
std::string groupFunction(std::string const& path) {
    auto const name = path.empty() ? std::string("_quillora") : "_quillora_at_" + nameOf(path);
    std::string members;
    for (auto const* member : Companion::commandsBelow(path))
        members += "\n        " + shellQuoted(lastWord(member->path) + ":" + escaped(member->summary.text()));
    auto const prefix = path.empty() ? std::string() : nameOf(path) + "_";
    return fmt::format(R"shell({0}() {{
    local -a commands=({1})
    if (( CURRENT == 2 )); then
        _describe command commands
        return
    fi
    local member="_quillora_at_{2}${{words[2]//[- ]/_}}"
    shift words
    (( CURRENT-- ))
    (( $+functions[$member] )) && $member
}}

)shell",
                       name, members, prefix);
}

} // namespace

std::string zshCompletion() {
    std::string text = "#compdef quillora\n# Completion of quillora for zsh. Made from the program's own "
                       "table of commands.\n" +
                       helpers;
    for (auto const& command : Companion::commandTable())
        if (command.run != nullptr) text += commandFunction(command);
    auto groups = pathsOfGroups();
    for (auto const& path : groups)
        text += groupFunction(path);
    return text + "_quillora \"$@\"\n";
}

} // namespace Manual
