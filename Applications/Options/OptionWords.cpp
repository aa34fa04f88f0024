#include "Applications/Options/OptionWords.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <deque>

namespace Options {

namespace {

struct Slot {
    OptionForm const* form;
    CLI::Option* option;
    std::vector<std::string> values;
};

CLI::Option* declared(CLI::App& parser, OptionForm const& form, std::vector<std::string>& values) {
    auto* const option = form.takesValue
                             ? parser.add_option(form.names, values)->expected(1)->allow_extra_args(false)
                             : parser.add_flag(form.names);
    // What is given twice is ours to refuse.
    return option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

std::optional<OptionFault> faultOf(Slot const& slot) {
    std::string const name(slot.form->name());
    auto const& given = slot.option->results();
    bool const isSwitch = std::ranges::all_of(given, [](auto const& result) { return result == "true"; });
    if (!slot.form->takesValue && !isSwitch) {
        return OptionFault{.kind = OptionFault::Kind::unexpectedValue, .option = name};
    }
    if (given.size() > 1) {
        return OptionFault{.kind = OptionFault::Kind::repeated, .option = name};
    }
    return std::nullopt;
}

// Whether "--" stands where the option's value has to: there it ends the options, as it does anywhere.
bool isCutOff(Slot const& slot, std::vector<std::string> const& words) {
    if (!slot.form->takesValue || slot.option->results().empty() || slot.option->results().front() != "--") {
        return false;
    }
    auto const isAtIt = [&](std::string const& word, std::string const& next) {
        return next == "--" && slot.option->check_name(word);
    };
    return std::ranges::adjacent_find(words, isAtIt) != words.end();
}

} // namespace

std::string_view OptionForm::name() const {
    return std::string_view(names).substr(names.rfind(',') + 1);
}

std::optional<std::string> OptionWords::value(std::string_view name) const {
    auto const found = values.find(name);
    if (found == values.end()) {
        return std::nullopt;
    }
    return found->second;
}

OptionWords readOptionWords(std::span<OptionForm const> forms, std::vector<std::string> words) {
    CLI::App parser;
    parser.set_help_flag();
    parser.allow_extras();
    std::deque<Slot> slots; // The parser keeps pointers to where the values go.
    for (auto const& form : forms) {
        auto& slot = slots.emplace_back(Slot{.form = &form, .option = nullptr, .values = {}});
        slot.option = declared(parser, form, slot.values);
    }

    OptionWords read;
    auto const given = words;
    std::string const lastWord = words.empty() ? "" : words.back();
    try {
        std::ranges::reverse(words); // Its parse takes the words from the back.
        parser.parse(words);
        read.others = parser.remaining();
    } catch (CLI::ParseError const&) {
        // Declared like this, it refuses one thing alone: an end of the words where a value has to stand. Its
        // message is written for programmers.
        read.fault = {.kind = OptionFault::Kind::missingValue,
                      .option = lastWord.substr(0, lastWord.find('='))};
    }
    for (auto const& slot : slots) {
        auto const& results = slot.option->results();
        if (results.empty()) {
            continue;
        }
        read.values.emplace(slot.form->name(), slot.form->takesValue ? results.front() : "");
        if (!read.fault && isCutOff(slot, given)) {
            read.fault = {.kind = OptionFault::Kind::missingValue, .option = std::string(slot.form->name())};
        }
        if (!read.fault) {
            read.fault = faultOf(slot);
        }
    }
    return read;
}

} // namespace Options
