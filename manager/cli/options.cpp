// SPDX-License-Identifier: MIT
// What CLI11 has for these shows how it works inside.
#include "manager/cli/options.h"

#include "manager/library/error.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace manager {

namespace {

class HelpText : public CLI::Formatter {
public:
    HelpText() {
        label("Positionals", "Arguments");
        label("OPTIONS", "OPTION...");
        label("SUBCOMMAND", "COMMAND");
    }
    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_positional() || option->get_type_name().empty()
                   ? std::string()
                   : " " + option->get_type_name();
    }
};

// CLI11 makes lists of words in brackets, and more of "{}". Whatever ends with this, which no
// argument can hold, is none of these.
constexpr char mark = '\0';

std::string asTyped(std::string word) {
    if (!word.empty() && word.back() == mark) {
        word.pop_back();
    }
    return word;
}

/// The command that was named, as far as it was understood, and how it is called.
std::pair<const CLI::App*, std::string> namedCommand(const CLI::App& program) {
    const CLI::App* command = &program;
    std::string words = program.get_name();
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        words += " " + command->get_name();
    }
    return {command, words};
}

std::string unknownWord(const CLI::App& command, const std::string& word) {
    const bool hasCommands =
        !command.get_subcommands([](const CLI::App* /*command*/) { return true; }).empty();
    return (word.size() > 1 && word.front() == '-' ? "unknown option '"
            : hasCommands                          ? "unknown command '"
                                                   : "unexpected word '") +
           word + "'";
}

} // namespace

CLI::Option* addOption(CLI::App& command, const std::string& name, const std::string& value,
                       const std::string& help, Times times, ValueTaker take) {
    return command
        .add_option_function<std::vector<std::string>>(
            name,
            [name, times, take = std::move(take)](const std::vector<std::string>& values) {
                if (times == Times::Once && values.size() > 1) {
                    throw CLI::ValidationError(name, "may be given once");
                }
                for (const std::string& text : values) {
                    try {
                        take(asTyped(text));
                    } catch (const Error& error) {
                        throw CLI::ValidationError(name, error.what());
                    }
                }
            },
            help)
        ->type_name(value)
        ->allow_extra_args(false);
}

CLI::Option* addText(CLI::App& command, const std::string& name, const std::string& value,
                     const std::string& help, std::string& into) {
    return addOption(command, name, value, help, Times::Once,
                     [&into](const std::string& text) { into = text; });
}

CLI::Option* addTexts(CLI::App& command, const std::string& name, const std::string& help,
                      std::vector<std::string>& into) {
    return command.add_option_function<std::vector<std::string>>(
        name,
        [&into](const std::vector<std::string>& words) {
            std::transform(words.begin(), words.end(), std::back_inserter(into), asTyped);
        },
        help);
}

CLI::Option* addWord(CLI::App& command, const std::string& name, const std::string& help,
                     std::string& into) {
    return command.add_option_function<std::string>(
        name, [&into](const std::string& word) { into = asTyped(word); }, help);
}

void parse(CLI::App& program, int argc, const char* const* argv) {
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    for (std::string& word : words) {
        if (word.starts_with('[') || word.starts_with('{')) {
            word += mark;
        }
    }
    std::reverse(words.begin(), words.end()); // as CLI11 takes them
    program.parse(std::move(words));
}

std::chrono::seconds toTime(std::string_view text) {
    static const std::map<std::string_view, std::int64_t> units = {
        {"s", 1}, {"min", 60}, {"h", 60 * 60}, {"d", 24 * 60 * 60}};
    constexpr std::int64_t longest = std::int64_t{100} * 366 * 24 * 60 * 60;
    std::int64_t count = 0;
    const char* const end = text.data() + text.size();
    const auto number = std::from_chars(text.data(), end, count);
    const auto unit =
        units.find(std::string_view(number.ptr, static_cast<std::size_t>(end - number.ptr)));
    if (number.ec != std::errc() || unit == units.end() || count < 1 ||
        count > longest / unit->second) {
        throw Error("'" + std::string(text) + "' is not a time such as 90s, 30min, 2h or 7d");
    }
    return std::chrono::seconds(count * unit->second);
}

void setHelp(CLI::App& program) {
    program.formatter(std::make_shared<HelpText>());
    program.set_help_flag("-h,--help", "Print this help");
}

std::string problemOf(const CLI::App& program, const CLI::ParseError& error) {
    const auto [command, words] = namedCommand(program);
    const std::vector<std::string> unknown = program.remaining(true);
    std::string text = error.what();
    if (!unknown.empty()) {
        text = unknownWord(*command, asTyped(unknown.front()));
    } else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        text = text.substr(0, text.find(':')) + ": a value is missing";
    } else if (const auto at = text.find(" excludes "); at != std::string::npos) {
        text.replace(at, 10, " does not go with ");
    } else if (text == "A subcommand is required") {
        text = "a command is missing";
    }
    return text + "; see " + words + " --help";
}

} // namespace manager
