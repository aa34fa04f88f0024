#include "Applications/Manual/BashCompletion.h"

#include "Applications/Manual/ShellText.h"

#include <fmt/format.h>

namespace Manual {

namespace {

std::string const head = R"(# Completion of quillora for bash. Made from the program's own table of commands.

)";

// "=" parts words on a command line of bash, so that "--family=sm" comes as three of them.
std::string const tail = R"shell(
_quillora_fill() {
    local kind=$1 current=$2
    case $kind in
    file) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    folder) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    zone) _quillora_lines "$current" < <(timedatectl list-timezones 2>/dev/null) ;;
    calendar) _quillora_lines "$current" < <(_quillora_members eciId calendars list) ;;
    source) _quillora_lines "$current" < <(_quillora_members id sources list) ;;
    '= '*) mapfile -t COMPREPLY < <(compgen -W "${kind#= }" -- "$current") ;;
    esac
}

# The values of one member in what a command prints for programs.
_quillora_members() {
    quillora "${@:2}" --json 2>/dev/null </dev/null | grep -o "\"$1\":\"[^\"]*\"" | cut -d '"' -f 4
}

_quillora_lines() {
    local line
    while IFS= read -r line; do
        [[ $line == "$1"* ]] && COMPREPLY+=("$(printf '%q' "$line")")
    done
}

_quillora() {
    local current=${COMP_WORDS[COMP_CWORD]} path='' option='' word index arguments=0 ended=0
    COMPREPLY=()
    for ((index = 1; index < COMP_CWORD; index++)); do
        word=${COMP_WORDS[index]}
        if [[ $word == '=' ]]; then
            continue
        elif [[ -n $option ]]; then
            option=''
        elif [[ $ended == 0 && $word == -- ]]; then
            ended=1
        elif [[ $ended == 0 && $word == -* ]]; then
            [[ $(_quillora_value "$path" "$word") != '' ]] && option=$word
        elif [[ " $(_quillora_commands "$path") " == *" $word "* ]]; then
            path=${path:+$path }$word
        else
            ((arguments += 1))
        fi
    done
    if [[ -n $option ]]; then
        [[ $current == '=' ]] && current=''
        _quillora_fill "$(_quillora_value "$path" "$option")" "$current"
    elif [[ $ended == 0 && $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_quillora_options "$path")" -- "$current")
    elif [[ -n $(_quillora_commands "$path") ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_quillora_commands "$path")" -- "$current")
    else
        _quillora_fill "$(_quillora_argument "$path" "$arguments")" "$current"
    fi
}

complete -F _quillora quillora
)shell";

std::string commandsFunction() {
    std::string text = "_quillora_commands() {\n    case $1 in\n";
    for (auto const& path : pathsOfGroups()) {
        std::string members;
        for (auto const* member : Companion::commandsBelow(path))
            members += (members.empty() ? "" : " ") + lastWord(member->path);
        text += fmt::format("    {}) echo {} ;;\n", shellQuoted(path), shellQuoted(members));
    }
    return text + "    esac\n}\n\n";
}

std::string optionsFunction() {
    std::string text = "_quillora_options() {\n    case $1 in\n    '') echo '--help --version' ;;\n";
    for (auto const& command : Companion::commandTable()) {
        std::string names;
        for (auto const& option : command.options)
            names += option.name + " ";
        text += fmt::format("    {}) echo {} ;;\n", shellQuoted(command.path), shellQuoted(names + "--help"));
    }
    return text + "    esac\n}\n\n";
}

// What _quillora_fill is told: a kind of value, or the values themselves.
std::string valueOf(Companion::ValueKind kind, std::vector<std::string> const& choices) {
    return choices.empty() ? std::string(kindName(kind)) : "= " + choiceWords(choices);
}

std::string valueFunction() {
    std::string text = "# What an option's value is; nothing for a switch.\n"
                       "_quillora_value() {\n    case \"$1 $2\" in\n";
    for (auto const& command : Companion::commandTable()) {
        for (auto const& option : command.options) {
            if (option.valueName.empty()) continue;
            text += fmt::format("    {}) echo {} ;;\n", shellQuoted(command.path + " " + option.name),
                                shellQuoted(valueOf(option.kind, option.choices)));
        }
    }
    return text + "    esac\n}\n\n";
}

std::string argumentFunction() {
    using Count = Companion::CommandArgument::Count;
    std::string text = "# What the argument is that stands after so many others.\n"
                       "_quillora_argument() {\n    case \"$1 $2\" in\n";
    for (auto const& command : Companion::commandTable()) {
        for (std::size_t index = 0; index < command.arguments.size(); ++index) {
            auto const& argument = command.arguments[index];
            auto const place = argument.count == Count::oneOrMore ? std::string("*") : std::to_string(index);
            text += fmt::format("    {}{}) echo {} ;;\n", shellQuoted(command.path + " "), place,
                                shellQuoted(valueOf(argument.kind, argument.choices)));
        }
    }
    return text + "    esac\n}\n";
}

} // namespace

std::string bashCompletion() {
    return head + commandsFunction() + optionsFunction() + valueFunction() + argumentFunction() + tail;
}

} // namespace Manual
