// SPDX-License-Identifier: MIT
// The options of `search`, and the query that they make.
#include "manager/cli/searchoptions.h"

#include "manager/library/error.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <glib.h>
#include <map>
#include <memory>

namespace manager {

namespace {

const std::map<std::string, faces::Slant> slants = {{"upright", faces::Slant::Upright},
                                                    {"italic", faces::Slant::Italic},
                                                    {"oblique", faces::Slant::Oblique}};
const std::map<std::string, faces::Technology> technologies = {
    {"T1", faces::Technology::Type1},
    {"TT", faces::Technology::TrueType},
    {"OT_T1", faces::Technology::OpenTypePostScript},
    {"OT_TT", faces::Technology::OpenTypeTrueType}};
const std::map<std::string, faces::Classification> classes = {
    {"serif", faces::Classification::Serif},    {"slab", faces::Classification::SlabSerif},
    {"sans", faces::Classification::SansSerif}, {"mono", faces::Classification::Monospaced},
    {"script", faces::Classification::Script},  {"decorative", faces::Classification::Decorative},
    {"symbol", faces::Classification::Symbol}};

/// "400", "400-700". nullopt: neither.
std::optional<Range> toRange(const std::string& text) {
    Range range;
    const char* const end = text.data() + text.size();
    auto read = std::from_chars(text.data(), end, range.from);
    range.to = range.from;
    if (read.ec == std::errc() && read.ptr != end && *read.ptr == '-') {
        read = std::from_chars(read.ptr + 1, end, range.to);
    }
    return read.ec == std::errc() && read.ptr == end ? std::optional(range) : std::nullopt;
}

void addRange(CLI::App& command, const std::string& name, std::optional<Range>& range,
              const char* help) {
    command.add_option_function<std::string>(
        name,
        [name, &range](const std::string& text) {
            range = toRange(text);
            if (!range) {
                throw CLI::ValidationError(name, "'" + text + "' is no number and no range");
            }
        },
        help);
}

std::u32string charactersOf(const std::string& text) {
    glong length = 0;
    const std::unique_ptr<gunichar, void (*)(gpointer)> characters(
        g_utf8_to_ucs4(text.c_str(), -1, nullptr, &length, nullptr), g_free);
    if (!characters) {
        throw Error("--covers: not a text in UTF-8");
    }
    return {characters.get(), characters.get() + length};
}

} // namespace

void SearchOptions::addTo(CLI::App& command) {
    command.add_option("word", words_, "Words that names of the face hold");
    addRange(command, "--weight", query_.weight, "Weight from 1 to 1000, or a range: 300-500");
    addRange(command, "--width", query_.width, "Width in per cent, or a range: 50-87.5");
    command.add_option("--slant", query_.slants, "upright, italic, oblique")
        ->expected(1)
        ->transform(CLI::CheckedTransformer(slants));
    command.add_option("--type", query_.technologies, "T1, TT, OT_T1, OT_TT")
        ->expected(1)
        ->transform(CLI::CheckedTransformer(technologies));
    command
        .add_option("--class", query_.classifications,
                    "serif, slab, sans, mono, script, decorative, symbol")
        ->expected(1)
        ->transform(CLI::CheckedTransformer(classes));
    command.add_flag("--monospaced", monospaced_, "With one width for all letters");
    command.add_flag("--variable", variable_, "Variable fonts alone");
    command.add_flag("--colour", colour_, "Fonts in colours");
    command.add_flag("--embeddable", embeddable_, "That editable documents may hold");
    command.add_option("--version", query_.version, "How its version begins");
    command.add_option("--foundry", query_.foundry, "A part of its maker's name");
    command.add_option("--licence", query_.licence, "A part of its licence or copyright");
    command.add_option("--script", query_.scripts, "A script that it covers: Cyrl")->expected(1);
    command.add_option("--language", query_.languages, "A language that it covers: de")
        ->expected(1);
    command.add_option("--feature", query_.features, "An OpenType feature: smcp")->expected(1);
    command.add_option("--axis", query_.axes, "An axis of a variable font: wght")->expected(1);
    command.add_option("--covers", covered_, "A text whose characters it has");
    command.add_option("--folder", query_.folder, "At or under this folder");
    command.add_option("--limit", query_.limit, "At most so many")->capture_default_str();
    command.add_option("--offset", query_.offset, "Without so many of the first");
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
    query.characters = charactersOf(covered_);
    return query;
}

} // namespace manager
