#include "Applications/Manual/FishCompletion.h"

#include "Applications/Companion/Texts.h"
#include "Applications/Manual/ShellText.h"

#include <fmt/format.h>

namespace Manual {

namespace {

using Companion::Command;
using Companion::CommandOption;

std::string const helpers =
    R"shell(# Completion of quillora for fish. Made from the program's own table of commands.

function __quillora_words
    set -l words (commandline -opc)
    for word in $words[2..]
        string match -q -- '-*' $word; or echo $word
    end
end

# Whether the command line begins with exactly these words and no further one.
function __quillora_ends_with
    test (string join ' ' (__quillora_words)) = "$argv"
end

# Whether it begins with these words.
function __quillora_begins_with
    string match -q -- "$argv *" (string join ' ' (__quillora_words))' '
end

function __quillora_members
    quillora $argv[2..] --json 2>/dev/null </dev/null | string match -ar '"'$argv[1]'":"([^"]*)"' | string match -v '"*'
end

complete -c quillora -f
)shell";

// In single quotes fish knows two escapes.
std::string fishQuoted(std::string_view text) {
    std::string word = "'";
    for (char const character : text) {
        if (character == '\'' || character == '\\') word += '\\';
        word += character;
    }
    return word + "'";
}

std::string completionOf(Companion::ValueKind kind) {
    auto const name = kindName(kind);
    if (name == "file") return " -F";
    if (name == "folder") return " -a '(__fish_complete_directories)'";
    if (name == "calendar") return " -a '(__quillora_members eciId calendars list)'";
    if (name == "source") return " -a '(__quillora_members id sources list)'";
    if (name == "zone") return " -a '(timedatectl list-timezones 2>/dev/null)'";
    return "";
}

std::string valueOf(CommandOption const& option) {
    if (option.valueName.empty()) return "";
    if (option.choices.empty()) return " -r" + completionOf(option.kind);
    return " -x -a " + fishQuoted(choiceWords(option.choices));
}

std::string line(std::string const& condition, std::string const& rest, std::string const& meaning) {
    return fmt::format("complete -c quillora -n {} {} -d {}\n", fishQuoted(condition), rest,
                       fishQuoted(meaning));
}

std::string linesOf(Command const& command) {
    auto const begins = "__quillora_begins_with " + command.path;
    std::string text;
    for (auto const& option : command.options)
        text += line(begins, "-l " + option.name.substr(2) + valueOf(option), option.help);
    text += line(begins, "-l help", Companion::Texts::helpOption());
    for (auto const& argument : command.arguments) {
        // One of a few words is offered while none stands there; nothing follows it.
        if (!argument.choices.empty())
            text += line("__quillora_ends_with " + command.path,
                         "-a " + fishQuoted(choiceWords(argument.choices)), argument.help);
        auto const values = completionOf(argument.kind);
        if (!values.empty()) text += line(begins, values.substr(1), argument.help);
    }
    return text;
}

} // namespace

std::string fishCompletion() {
    std::string text = helpers;
    for (auto const& path : pathsOfGroups()) {
        auto const condition =
            path.empty() ? std::string("__quillora_ends_with") : "__quillora_ends_with " + path;
        for (auto const* member : Companion::commandsBelow(path))
            text += line(condition, "-a " + lastWord(member->path), member->summary);
    }
    for (auto const& command : Companion::commandTable())
        if (command.run != nullptr) text += linesOf(command);
    return text;
}

} // namespace Manual
