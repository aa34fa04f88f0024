#include "Applications/Companion/Help.h"

#include "Applications/Companion/Texts.h"
#include "Foundation/Text.h"

#include <algorithm>

namespace Companion {

namespace {

constexpr std::size_t pageWidth = 80;
constexpr std::size_t margin = 2;

// `text` as lines of at most the page's width, each indented; blank lines part paragraphs.
std::string wrapped(std::string_view text, std::size_t indent) {
    std::string page;
    std::string line;
    auto const flush = [&] {
        if (!line.empty()) page += std::string(indent, ' ') + line + "\n";
        line.clear();
    };
    auto const add = [&](std::string_view word) {
        auto const width = Foundation::Text::terminalWidth(word);
        if (!line.empty() && indent + Foundation::Text::terminalWidth(line) + 1 + width > pageWidth) flush();
        line += (line.empty() ? "" : " ") + std::string(word);
    };
    while (!text.empty()) {
        auto const end = text.find_first_of(" \n");
        if (auto const word = text.substr(0, end); !word.empty()) add(word);
        if (end == std::string_view::npos) break;
        bool const endsParagraph = text.substr(end).starts_with("\n\n");
        if (endsParagraph) {
            flush();
            page += "\n";
        }
        text.remove_prefix(end + (endsParagraph ? 2 : 1));
    }
    flush();
    return page;
}

struct Entry {
    std::string term;
    std::string meaning;
};

// Terms in one column and their meanings in a second, under a heading; nothing for no entries.
std::string section(std::string_view heading, std::vector<Entry> const& entries) {
    if (entries.empty()) return {};
    std::size_t widest = 0;
    for (auto const& entry : entries)
        widest = std::max(widest, Foundation::Text::terminalWidth(entry.term));
    std::size_t const column = margin + widest + 2;
    std::string page = "\n" + std::string(heading) + "\n";
    for (auto const& entry : entries) {
        auto const padding = column - margin - Foundation::Text::terminalWidth(entry.term);
        auto meaning = wrapped(entry.meaning, column);
        meaning.erase(0, std::min(column, meaning.size()));
        page += std::string(margin, ' ') + entry.term + std::string(padding, ' ') + meaning;
    }
    return page;
}

std::string optionTerm(CommandOption const& option) {
    return option.valueName.empty() ? option.name : option.name + " " + option.valueName;
}

std::string argumentTerm(CommandArgument const& argument) {
    return argument.name + (argument.count == CommandArgument::Count::oneOrMore ? "..." : "");
}

std::string examples(std::vector<CommandExample> const& list) {
    if (list.empty()) return {};
    std::string page = "\n" + Texts::examplesHeading() + "\n";
    for (auto const& example : list)
        page += std::string(margin, ' ') + example.commandLine + "\n" +
                wrapped(example.meaning.text(), margin + 4);
    return page;
}

std::vector<Entry> entriesOf(std::vector<Command const*> const& commands) {
    std::vector<Entry> entries;
    for (auto const* command : commands)
        entries.push_back({command->path, command->summary});
    return entries;
}

// Every command that does something, groups replaced by their members.
std::vector<Command const*> runnableCommands() {
    std::vector<Command const*> commands;
    for (auto const& command : commandTable())
        if (command.run != nullptr) commands.push_back(&command);
    return commands;
}

// What stands after a command's path, each option with its value.
std::vector<std::string> synopsisParts(Command const& command) {
    if (command.run == nullptr) return {Texts::usageMembers()};
    std::vector<std::string> parts;
    auto const add = [&parts](std::string const& part, bool isOptional) {
        parts.push_back(isOptional ? "[" + part + "]" : part);
    };
    for (auto const& argument : command.arguments)
        add(argumentTerm(argument), argument.count == CommandArgument::Count::atMostOne);
    for (auto const& option : command.options)
        add(optionTerm(option), !option.isRequired);
    return parts;
}

// The first line stands out, those that continue it are indented further. No part is broken.
std::string usage(Command const& command) {
    std::string page;
    std::string line = std::string(margin, ' ') + "quillora " + command.path;
    for (auto const& part : synopsisParts(command)) {
        if (Foundation::Text::terminalWidth(line) + 1 + Foundation::Text::terminalWidth(part) > pageWidth) {
            page += line + "\n";
            line = std::string(margin + 3, ' ');
        }
        line += " " + part;
    }
    return page + line + "\n";
}

std::string programHelp() {
    std::string page = wrapped(Texts::programDescription(), 0);
    page += "\n" + Texts::usageHeading() + "\n";
    for (auto const& line : {Texts::usageCommand(), Texts::usageCommandHelp()})
        page += std::string(margin, ' ') + line + "\n";
    page += "  quillora --version\n";
    page += section(Texts::commandsHeading(), entriesOf(runnableCommands()));
    page += section(Texts::exitCodesHeading(), {{"0", Texts::exitDone()},
                                                {"1", Texts::exitFailed()},
                                                {"2", Texts::exitWrongUse()},
                                                {"130", Texts::exitInterrupted()}});
    page += "\n" + wrapped(Texts::firstSteps(), 0);
    return page;
}

} // namespace

std::string synopsis(Command const& command) {
    std::string line = "quillora " + command.path;
    for (auto const& part : synopsisParts(command))
        line += " " + part;
    return line;
}

std::string helpText(Command const* command) {
    if (command == nullptr) return programHelp();
    std::string page = wrapped(command->description.text(), 0);
    page += "\n" + Texts::usageHeading() + "\n" + usage(*command);

    if (command->run == nullptr)
        page += section(Texts::commandsHeading(), entriesOf(commandsBelow(command->path)));
    std::vector<Entry> arguments;
    for (auto const& argument : command->arguments)
        arguments.push_back({argumentTerm(argument), argument.help});
    page += section(Texts::argumentsHeading(), arguments);
    std::vector<Entry> options;
    for (auto const& option : command->options)
        options.push_back({optionTerm(option), option.help});
    if (command->run != nullptr) options.push_back({"--help", Texts::helpOption()});
    page += section(Texts::optionsHeading(), options);
    page += examples(command->examples);
    return page;
}

} // namespace Companion
