// SPDX-License-Identifier: MIT
// The options of `search`, and the query that they make.
#include "manager/cli/searchoptions.h"

#include "manager/cli/options.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <glib.h>
#include <utility>

namespace manager {

namespace {

template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

const Choices<faces::Slant> slants = {{"upright", faces::Slant::Upright},
                                      {"italic", faces::Slant::Italic},
                                      {"oblique", faces::Slant::Oblique}};
const Choices<faces::Technology> technologies = {{"T1", faces::Technology::Type1},
                                                 {"TT", faces::Technology::TrueType},
                                                 {"OT_T1", faces::Technology::OpenTypePostScript},
                                                 {"OT_TT", faces::Technology::OpenTypeTrueType}};
const Choices<faces::Classification> classes = {
    {"serif", faces::Classification::Serif},    {"slab", faces::Classification::SlabSerif},
    {"sans", faces::Classification::SansSerif}, {"mono", faces::Classification::Monospaced},
    {"script", faces::Classification::Script},  {"decorative", faces::Classification::Decorative},
    {"symbol", faces::Classification::Symbol}};

std::string cased(std::string text, gchar (*change)(gchar)) {
    std::transform(text.begin(), text.end(), text.begin(), change);
    return text;
}

template <class Value>
void addChoice(CLI::App& command, const std::string& name, const std::string& help,
               const Choices<Value>& choices, std::vector<Value>& into) {
    std::string words;
    for (const auto& [word, value] : choices) {
        words += (words.empty() ? "" : ", ") + word;
    }
    addOption(command, name, "WORD", help + ": " + words, Times::Several,
              [&choices, &into, words](const std::string& text) {
                  const auto choice =
                      std::find_if(choices.begin(), choices.end(), [&](const auto& entry) {
                          return g_ascii_strcasecmp(entry.first.c_str(), text.c_str()) == 0;
                      });
                  if (choice == choices.end()) {
                      throw Error("'" + text + "' is none of " + words);
                  }
                  into.push_back(choice->second);
              });
}

/// "400", "400-700". Throws Error.
Range toRange(const std::string& text, const Range& allowed) {
    Range range;
    const char* const end = text.data() + text.size();
    auto read = std::from_chars(text.data(), end, range.from, std::chars_format::fixed);
    range.to = range.from;
    if (read.ec == std::errc() && read.ptr != end && *read.ptr == '-') {
        read = std::from_chars(read.ptr + 1, end, range.to, std::chars_format::fixed);
    }
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(range.from + range.to)) {
        throw Error("'" + text + "' is no number and no range");
    }
    if (range.from > range.to) {
        throw Error("'" + text + "' ends before it begins");
    }
    if (range.from < allowed.from || range.to > allowed.to) {
        throw Error("'" + text + "' goes beyond " + std::to_string(std::lround(allowed.from)) +
                    " to " + std::to_string(std::lround(allowed.to)));
    }
    return range;
}

void addRange(CLI::App& command, const std::string& name, const std::string& help,
              const Range& allowed, std::optional<Range>& into) {
    addOption(command, name, "NUMBER[-NUMBER]", help, Times::Once,
              [&into, allowed](const std::string& text) { into = toRange(text, allowed); });
}

void addTags(CLI::App& command, const std::string& name, const std::string& value,
             const std::string& help, std::vector<std::string>& into,
             std::string (*normal)(std::string) = nullptr) {
    addOption(command, name, value, help, Times::Several, [&into, normal](const std::string& text) {
        into.push_back(normal == nullptr ? text : normal(text));
    });
}

// As ISO 15924 writes them.
std::string scriptCode(std::string text) {
    text = cased(std::move(text), g_ascii_tolower);
    if (!text.empty()) {
        text.front() = g_ascii_toupper(text.front());
    }
    return text;
}

std::string languageCode(std::string text) {
    std::replace(text.begin(), text.end(), '_', '-');
    return cased(std::move(text), g_ascii_tolower);
}

void addNumber(CLI::App& command, const std::string& name, const std::string& help,
               std::size_t& into) {
    addOption(command, name, "NUMBER", help, Times::Once, [&into](const std::string& text) {
        const auto number = toNumber<std::size_t>(text);
        if (!number) {
            throw Error("'" + text + "' is not a whole number");
        }
        into = *number;
    });
}

} // namespace

void SearchOptions::addTo(CLI::App& command) {
    addTexts(command, "word", "Words that names of the face hold", words_);
    addOption(command, "--similar", "NAME", "That look like this face, the nearest first",
              Times::Once, [this](const std::string& text) { similar_ = text; });
    addRange(command, "--weight", "From 1 to 1000: 700, or 300-500", {1, 1000}, query_.weight);
    addRange(command, "--width", "In per cent: 75, or 50-87.5", {1, 1000}, query_.width);
    addChoice(command, "--slant", "One of", slants, query_.slants);
    addChoice(command, "--type", "One of", technologies, query_.technologies);
    addChoice(command, "--class", "One of", classes, query_.classifications);
    command.add_flag("--monospaced", monospaced_, "With one width for all letters");
    command.add_flag("--variable", variable_, "Variable fonts alone");
    command.add_flag("--colour", colour_, "Fonts in colours");
    command.add_flag("--embeddable", embeddable_, "That editable documents may hold");
    addText(command, "--version", "TEXT", "How its version begins", query_.version);
    addText(command, "--foundry", "TEXT", "A part of its maker's name", query_.foundry);
    addText(command, "--licence", "TEXT", "A part of its licence or copyright", query_.licence);
    addTags(command, "--script", "CODE", "A script that it covers: Cyrl", query_.scripts,
            scriptCode);
    addTags(command, "--language", "CODE", "A language that it covers: de", query_.languages,
            languageCode);
    addTags(command, "--feature", "TAG", "An OpenType feature: smcp", query_.features);
    addTags(command, "--axis", "TAG", "An axis of a variable font: wght", query_.axes);
    addOption(command, "--covers", "TEXT", "A text whose characters it has", Times::Several,
              [this](const std::string& text) { query_.characters += charactersOf(text); });
    addText(command, "--folder", "FOLDER", "At or under this folder", query_.folder);
    addNumber(command, "--limit", "At most so many; 100 if not given", query_.limit);
    addNumber(command, "--offset", "Without so many of the first", query_.offset);
}

FaceQuery SearchOptions::query() const {
    FaceQuery query = query_;
    for (const std::string& word : words_) {
        query.text += (query.text.empty() ? "" : " ") + word;
    }
    const auto only = [](bool flag) { return flag ? std::optional(true) : std::nullopt; };
    query.monospaced = only(monospaced_);
    query.variable = only(variable_);
    query.colour = only(colour_);
    query.embeddable = only(embeddable_);
    return query;
}

} // namespace manager
