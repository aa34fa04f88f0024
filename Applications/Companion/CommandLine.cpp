#include "Applications/Companion/CommandLine.h"

#include "Applications/Companion/Texts.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>

namespace Companion {

namespace {

bool looksLikeOption(std::string_view word) {
    return word.size() > 1 && word.starts_with('-');
}

// The parsed options of one command, with the words that are none.
struct ParsedWords {
    std::map<std::string, std::string, std::less<>> options;
    std::vector<std::string> others;
    bool asksForHelp = false;
};

// CLI11 names the option at the start of its message; the message itself is written for programmers.
[[noreturn]] void refuseMissingValue(Command const& command, std::string_view message) {
    for (auto const& option : command.options)
        if (message.starts_with(option.name + ":"))
            throw CommandError::wrongUse(Texts::missingValue(command.path, option.name, option.valueName));
    throw CommandError::wrongUse(Texts::badOptions(command.path, message));
}

ParsedWords parseOptions(Command const& command, std::vector<std::string> words) {
    CLI::App parser;
    parser.set_help_flag();
    parser.allow_extras();
    bool asksForHelp = false;
    parser.add_flag("-h,--help", asksForHelp);

    // CLI11 keeps pointers to where the values go, so the map is complete before it parses.
    struct Slot {
        CLI::Option* option;
        std::vector<std::string> values;
    };
    std::map<std::string, Slot, std::less<>> slots;
    for (auto const& option : command.options) {
        auto& slot = slots[option.name];
        slot.option = option.valueName.empty()
                          ? parser.add_flag(option.name)
                          : parser.add_option(option.name, slot.values)->expected(1)->allow_extra_args(false);
        slot.option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    try {
        std::ranges::reverse(words); // Its parse takes the words from the back.
        parser.parse(words);
    } catch (CLI::ArgumentMismatch const& error) {
        refuseMissingValue(command, error.what());
    } catch (CLI::ParseError const& error) {
        throw CommandError::wrongUse(Texts::badOptions(command.path, error.what()));
    }

    ParsedWords parsed{.options = {}, .others = parser.remaining(), .asksForHelp = asksForHelp};
    for (auto const& [name, slot] : slots) {
        if (slot.option->count() > 1) throw CommandError::wrongUse(Texts::repeatedOption(name));
        if (slot.option->count() == 1)
            parsed.options.emplace(name, slot.values.empty() ? "" : slot.values.front());
    }
    return parsed;
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
    for (std::size_t index = 0; index < command.arguments.size(); ++index)
        if (given.size() <= index)
            throw CommandError::wrongUse(Texts::missingArgument(command.path, command.arguments[index].name));
    bool const takesMore =
        !command.arguments.empty() && command.arguments.back().count == CommandArgument::Count::oneOrMore;
    if (!takesMore && given.size() > command.arguments.size())
        throw CommandError::wrongUse(
            Texts::unexpectedArgument(command.path, given[command.arguments.size()]));
}

// The deepest command or group that the first words name; they are taken off `words`.
Command const* takeCommand(std::vector<std::string>& words) {
    Command const* command = nullptr;
    std::string path;
    while (!words.empty() && !looksLikeOption(words.front())) {
        if (command != nullptr && command->run != nullptr) break;
        path += (path.empty() ? "" : " ") + words.front();
        command = findCommand(path);
        if (command == nullptr) throw CommandError::wrongUse(Texts::unknownCommand(path));
        words.erase(words.begin());
    }
    return command;
}

// What a group, or the program without a command, can still be asked.
CommandLine parseForGroup(Command const* group, std::vector<std::string> const& words) {
    if (words.empty()) {
        if (group == nullptr) return HelpRequest{nullptr};
        std::vector<std::string> members;
        for (auto const* member : commandsBelow(group->path))
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

CommandLine parseCommandLine(std::vector<std::string> const& words) {
    auto rest = words;
    Command const* command = takeCommand(rest);
    if (command == nullptr || command->run == nullptr) return parseForGroup(command, rest);

    auto parsed = parseOptions(*command, std::move(rest));
    if (parsed.asksForHelp) return HelpRequest{command};
    auto arguments = positionalWords(*command, std::move(parsed.others));
    checkOptions(*command, parsed.options);
    checkArguments(*command, arguments);
    return CommandToRun{command, ArgumentValues(std::move(parsed.options), std::move(arguments))};
}

} // namespace Companion
