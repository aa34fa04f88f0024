#include "Applications/Companion/CommandLine.h"

#include "Applications/Companion/Texts.h"
#include "Applications/Options/OptionWords.h"

#include <algorithm>
#include <utility>

namespace Companion {

namespace {

bool looksLikeOption(std::string_view word) {
    return word.size() > 1 && word.starts_with('-');
}

Options::OptionWords readOptions(Command const& command, std::vector<std::string> words) {
    std::vector<Options::OptionForm> forms{{.names = "-h,--help", .takesValue = false}};
    for (auto const& option : command.options)
        forms.push_back({.names = option.name, .takesValue = !option.valueName.empty()});
    return Options::readOptionWords(forms, std::move(words));
}

[[noreturn]] void refuse(Command const& command, Options::OptionFault const& fault) {
    using Kind = Options::OptionFault::Kind;
    switch (fault.kind) {
    case Kind::missingValue: {
        auto const option = std::ranges::find(command.options, fault.option, &CommandOption::name);
        auto const value = option == command.options.end() ? "" : option->valueName;
        throw CommandError::wrongUse(Texts::missingValue(command.path, fault.option, value));
    }
    case Kind::unexpectedValue:
        throw CommandError::wrongUse(Texts::unexpectedValue(command.path, fault.option));
    case Kind::repeated: throw CommandError::wrongUse(Texts::repeatedOption(fault.option));
    }
    std::unreachable();
}

// The words that are the command's arguments: those before "--" must not look like options.
std::vector<std::string> positionalWords(Command const& command, std::vector<std::string> words) {
    auto const marker = std::ranges::find(words, "--");
    auto const unknown = std::find_if(words.begin(), marker, looksLikeOption);
    if (unknown != marker) throw CommandError::wrongUse(Texts::unknownOption(command.path, *unknown));
    if (marker != words.end()) words.erase(marker);
    return words;
}

void checkOptions(Command const& command, std::map<std::string, std::string, std::less<>> const& given) {
    for (auto const& option : command.options) {
        auto const found = given.find(option.name);
        if (found == given.end()) {
            if (option.isRequired)
                throw CommandError::wrongUse(Texts::missingOption(command.path, option.name));
            continue;
        }
        if (!option.choices.empty() &&
            std::ranges::find(option.choices, found->second) == option.choices.end())
            throw CommandError::wrongUse(Texts::unknownChoice(option.name, found->second, option.choices));
        for (auto const& other : option.excludes)
            if (given.contains(other))
                throw CommandError::wrongUse(Texts::optionsExclude(option.name, other));
    }
}

void checkArguments(Command const& command, std::vector<std::string> const& given) {
    for (std::size_t index = given.size(); index < command.arguments.size(); ++index)
        if (command.arguments[index].count != CommandArgument::Count::atMostOne)
            throw CommandError::wrongUse(Texts::missingArgument(command.path, command.arguments[index].name));
    bool const takesMore =
        !command.arguments.empty() && command.arguments.back().count == CommandArgument::Count::oneOrMore;
    if (!takesMore && given.size() > command.arguments.size())
        throw CommandError::wrongUse(
            Texts::unexpectedArgument(command.path, given[command.arguments.size()]));
    for (std::size_t index = 0; index < std::min(given.size(), command.arguments.size()); ++index) {
        auto const& [name, help, kind, count, choices] = command.arguments[index];
        if (!choices.empty() && std::ranges::find(choices, given[index]) == choices.end())
            throw CommandError::wrongUse(Texts::unknownChoice(name, given[index], choices));
    }
}

// The deepest command or group that the first words name; they are taken off `words`.
Command const* takeCommand(std::vector<std::string>& words, Commands commands) {
    Command const* command = nullptr;
    std::string path;
    while (!words.empty() && !looksLikeOption(words.front())) {
        if (command != nullptr && command->run != nullptr) break;
        path += (path.empty() ? "" : " ") + words.front();
        command = findCommand(path, commands);
        if (command == nullptr) throw CommandError::wrongUse(Texts::unknownCommand(path));
        words.erase(words.begin());
    }
    return command;
}

// What a group, or the program without a command, can still be asked.
CommandLine parseForGroup(Command const* group, std::vector<std::string> const& words, Commands commands) {
    if (words.empty()) {
        if (group == nullptr) return HelpRequest{nullptr};
        std::vector<std::string> members;
        for (auto const* member : commandsBelow(group->path, commands))
            members.push_back(member->path.substr(group->path.size() + 1));
        throw CommandError::wrongUse(Texts::missingSubcommand(group->path, members));
    }
    if (words.front() == "--help" || words.front() == "-h") return HelpRequest{group};
    if (group == nullptr && words.front() == "--version") return VersionRequest{};
    throw CommandError::wrongUse(Texts::unknownOption(group == nullptr ? "" : group->path, words.front()));
}

} // namespace

ArgumentValues::ArgumentValues(std::map<std::string, std::string, std::less<>> options,
                               std::vector<std::string> arguments)
    : options(std::move(options)),
      positional(std::move(arguments)) {}

std::optional<std::string> ArgumentValues::option(std::string_view name) const {
    auto const found = options.find(name);
    if (found == options.end()) return std::nullopt;
    return found->second;
}

bool ArgumentValues::has(std::string_view name) const {
    return options.contains(name);
}

CommandLine parseCommandLine(std::vector<std::string> const& words, Commands commands) {
    auto rest = words;
    Command const* command = takeCommand(rest, commands);
    if (command == nullptr || command->run == nullptr) return parseForGroup(command, rest, commands);

    auto read = readOptions(*command, std::move(rest));
    if (read.has("--help")) return HelpRequest{command};
    if (read.fault) refuse(*command, *read.fault);
    auto arguments = positionalWords(*command, std::move(read.others));
    checkOptions(*command, read.values);
    checkArguments(*command, arguments);
    return CommandToRun{command, ArgumentValues(std::move(read.values), std::move(arguments))};
}

} // namespace Companion
