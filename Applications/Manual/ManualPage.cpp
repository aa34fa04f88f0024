#include "Applications/Manual/ManualPage.h"

#include "Applications/Companion/Help.h"
#include "Applications/Companion/ManualTexts.h"
#include "Applications/Companion/Texts.h"

#include <algorithm>
#include <fmt/format.h>

namespace Manual {

namespace {

namespace Texts = Companion::Texts;
using Companion::Command;

// Text that roff prints as it stands: its own characters escaped, and none at a line's beginning that would
// make it a request.
std::string escaped(std::string_view text) {
    std::string result;
    bool isAtLineStart = true;
    for (char const character : text) {
        if (isAtLineStart && (character == '.' || character == '\'')) result += "\\&";
        switch (character) {
        case '\\': result += "\\e"; break;
        case '-': result += "\\-"; break;
        case '"': result += "\\(dq"; break;
        default: result += character;
        }
        isAtLineStart = character == '\n';
    }
    return result;
}

std::string heading(std::string_view text) {
    return ".SH " + escaped(text) + "\n";
}

// Blank lines part paragraphs.
std::string paragraphs(std::string_view text) {
    std::string page;
    while (!text.empty()) {
        auto const end = text.find("\n\n");
        page += (page.empty() ? "" : ".PP\n") + escaped(text.substr(0, end)) + "\n";
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 2);
    }
    return page;
}

std::string entry(std::string_view term, std::string_view meaning) {
    return ".TP\n.B " + escaped(term) + "\n" + escaped(meaning) + "\n";
}

std::string entries(std::string const& title, std::vector<Texts::ManualEntry> const& list) {
    if (list.empty()) return {};
    std::string page = heading(title);
    for (auto const& [term, meaning] : list)
        page += entry(term, meaning);
    return page;
}

std::string beginning(std::string const& name, std::string_view summary, std::string_view version,
                      std::string_view date) {
    auto title = name;
    std::ranges::transform(title, title.begin(), [](char character) {
        return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    });
    return fmt::format(".TH {} 1 {} \"Quillora {}\" \"{}\"\n", escaped(title), date, escaped(version),
                       escaped(Texts::manualTitle())) +
           heading(Texts::nameHeading()) + escaped(name) + " \\- " + escaped(summary) + "\n";
}

std::vector<Texts::ManualEntry> membersOf(std::string_view path) {
    std::vector<Texts::ManualEntry> members;
    for (auto const* member : Companion::commandsBelow(path))
        members.push_back({pageName(member) + "(1)", member->summary});
    return members;
}

std::string seeAlso(std::vector<std::string> const& names) {
    std::string page = heading(Texts::seeAlsoHeading());
    for (std::size_t index = 0; index < names.size(); ++index)
        page += ".BR " + escaped(names[index]) + " (1)" + (index + 1 < names.size() ? ",\n" : "\n");
    return page;
}

// The group above a command, or the program.
std::string parentOf(Command const& command) {
    auto const blank = command.path.rfind(' ');
    if (blank == std::string::npos) return pageName(nullptr);
    return pageName(Companion::findCommand(command.path.substr(0, blank)));
}

std::string programPage(std::string_view version, std::string_view date) {
    auto page = beginning(pageName(nullptr), Texts::programSummary(), version, date);
    page += heading(Texts::synopsisHeading()) + escaped(Texts::usageCommand()) + "\n.br\n" +
            escaped(Texts::usageCommandHelp()) + "\n.br\nquillora \\-\\-version\n";
    page += heading(Texts::descriptionHeading()) + paragraphs(Texts::programDescription());
    page += ".PP\n" + paragraphs(Texts::firstSteps());
    page += entries(Texts::manualCommandsHeading(), membersOf(""));
    page += entries(Texts::exitStatusHeading(), Texts::exitStatuses());
    page += entries(Texts::environmentHeading(), Texts::environmentVariables());
    return page;
}

std::string commandPage(Command const& command, std::string_view version, std::string_view date) {
    auto page = beginning(pageName(&command), command.summary.text(), version, date);
    page += heading(Texts::synopsisHeading()) + escaped(Companion::synopsis(command)) + "\n";
    page += heading(Texts::descriptionHeading()) + paragraphs(command.description.text());
    page += entries(Texts::manualCommandsHeading(), membersOf(command.path));
    std::vector<Texts::ManualEntry> arguments;
    for (auto const& argument : command.arguments)
        arguments.push_back({argument.name, argument.help});
    page += entries(Texts::manualArgumentsHeading(), arguments);
    std::vector<Texts::ManualEntry> options;
    for (auto const& option : command.options)
        options.push_back(
            {option.name + (option.valueName.empty() ? "" : " " + option.valueName), option.help});
    if (command.run != nullptr) options.push_back({"--help", Texts::helpOption()});
    page += entries(Texts::manualOptionsHeading(), options);
    std::vector<Texts::ManualEntry> examples;
    for (auto const& example : command.examples)
        examples.push_back({example.commandLine, example.meaning});
    page += entries(Texts::manualExamplesHeading(), examples);
    if (command.run != nullptr) page += entries(Texts::exitStatusHeading(), Texts::exitStatuses());
    return page + seeAlso({parentOf(command)});
}

} // namespace

std::string pageName(Command const* command) {
    std::string name = "quillora";
    if (command == nullptr) return name;
    name += "-" + command->path;
    std::ranges::replace(name, ' ', '-');
    return name;
}

std::string manualPage(Command const* command, std::string_view version, std::string_view date) {
    return command == nullptr ? programPage(version, date) : commandPage(*command, version, date);
}

} // namespace Manual
