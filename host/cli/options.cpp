// SPDX-License-Identifier: MIT
// Reading the command line.
#include "host/cli/options.h"

#include "host/cli/exitstatus.h"
#include "host/cli/sabotage.h"
#include "host/core/translation.h"

#include <CLI/CLI.hpp>

#include <filesystem>

namespace host {

namespace {

void declareShared(CLI::App& app, Options& options) {
    app.add_option("--plugin", options.plugin,
                   "The plug-in to load, a folder NAME.aip (else $GLYPHORA_PLUGIN, else beside "
                   "the program)")
        ->type_name("BUNDLE");
    app.add_option("--locale", options.locale,
                   "Language and country that the plug-in is told, such as de_DE (else from the "
                   "environment)")
        ->type_name("CODE");
    app.add_flag("-q,--quiet", options.quiet, "Print only what went wrong");
    app.add_flag("-v,--verbose", options.verbose,
                 "Print also which suite calls were made, and what the plug-in prints")
        ->excludes("--quiet");
    app.add_option("--misbehave", options.misbehave,
                   "Fail on purpose, to try a plug-in out: missing-suite=NAME:VERSION or "
                   "failing-call=[SUITE/]CALL[:ERROR[:FROM]]")
        ->type_name("FAULT")
        ->allow_extra_args(false)
        ->check([](const std::string& text) { return checkSabotage(text); });
}

void declareOpen(CLI::App& app, Options& options) {
    app.add_option("FILE", options.files, "Drawings: SVG, plain or gzipped")->required();
    app.add_flag("--no-plugin", options.noPlugin, "Load no plug-in, only list the fonts");
    app.add_option_function<std::string>(
           "--report",
           [&options](const std::string& format) {
               options.report = format == "json" ? ReportFormat::Json : ReportFormat::Text;
           },
           "Form of the report")
        ->check(CLI::IsMember({"text", "json"}));
    app.add_option("--save", options.save, "Write the drawing here, with its replaced fonts")
        ->type_name("FILE");
    app.add_flag("--reload", options.reload,
                 "Unload the plug-in and load it again between drawings");
    app.add_flag("--keep-groups", options.keepGroups,
                 "Show groups to the plug-in as they stand (it looks at the topmost only)");
    app.add_flag("--fail-on-missing", options.failOnMissing,
                 "Exit with 1 when a drawing still misses fonts");
    app.add_flag("--headless", options.headless,
                 "Show no windows: dialogs are told of in the report, and given up");
    app.add_option("--answers", options.answers,
                   "Answer dialogs by this script, a command a line (see the manual page)")
        ->type_name("FILE");
    app.add_option("--pictures", options.pictures,
                   "Write a picture of every window into this folder, without a display, too")
        ->type_name("FOLDER")
        ->check(CLI::ExistingDirectory);
}

void declareCheck(CLI::App& app, CheckOptions& options, Options& shared) {
    app.add_option("PATH", options.paths,
                   "Drawings, folders of drawings, or - for a drawing from standard input");
    app.add_option("--files-from", options.list,
                   "Check also what this file names, a path a line or with null characters between "
                   "(-: standard input)")
        ->type_name("FILE");
    app.add_option_function<std::string>(
           "--report",
           [&options](const std::string& form) {
               options.form = form == "json"    ? CheckForm::Json
                              : form == "jsonl" ? CheckForm::JsonLines
                                                : CheckForm::Text;
           },
           "Form of the report")
        ->check(CLI::IsMember({"text", "jsonl", "json"}));
    app.add_flag("--missing-only", options.missingOnly,
                 "Leave out drawings that have all fonts and characters");
    app.add_flag("--fail-on-missing", options.failOnMissing,
                 "Exit with 1 when a drawing misses fonts");
    app.add_option("-j,--jobs", options.jobs,
                   "Drawings that are read at a time (else as many as there are processors)")
        ->type_name("N")
        ->check(CLI::Range(1U, 1024U));
    app.add_option("--locale", shared.locale,
                   "Language and country of the texts in drawings that have them in several, such "
                   "as de_DE (else from the environment)")
        ->type_name("CODE");
}

void declareReplace(CLI::App& app, ReplaceOptions& options, Options& shared) {
    app.add_option("PATH", options.paths, "Drawings, and folders of drawings")->required();
    app.add_option("--with", options.rules,
                   "A replacement: a family, a family with a style or a PostScript name, and the "
                   "name of an installed font or family; * and ? stand for other characters")
        ->type_name("OLD=NEW")
        ->allow_extra_args(false);
    app.add_option("--table", options.tables, "A file of such replacements, one a line, # comments")
        ->type_name("FILE")
        ->allow_extra_args(false);
    auto* const output =
        app.add_option("-o,--output", options.output,
                       "Write the drawing here; several, or those of folders, into this folder")
            ->type_name("PATH");
    auto* const inPlace =
        app.add_flag("--in-place", options.inPlace,
                     "Replace the drawings themselves; the old ones stay beside as NAME.orig")
            ->excludes(output);
    app.add_flag("-n,--dry-run", options.dryRun, "Write nothing, show what would change")
        ->excludes(output)
        ->excludes(inPlace);
    app.add_option("--locale", shared.locale,
                   "Language and country of the texts in drawings that have them in several, such "
                   "as de_DE (else from the environment)")
        ->type_name("CODE");
}

// Who gives nothing but files wants them opened.
void suggestOpening(const std::vector<std::string>& words, std::ostream& errors) {
    if (!words.empty() && std::filesystem::exists(words.front())) {
        errors << "To open it: glyphora-host open " << words.front() << '\n';
    }
}

} // namespace

std::optional<Options> readOptions(int argumentCount, const char* const* arguments,
                                   std::ostream& output, std::ostream& errors, int& exitStatus) {
    Options options;
    options.locale = languageOfEnvironment();
    CLI::App app{"Opens drawings, with a plug-in that activates the fonts they miss."};
    app.name("glyphora-host");
    app.set_version_flag("--version", "glyphora-host " GLYPHORA_VERSION);
    app.add_flag("--self-test", options.selfTest, "Load everything and quit");
    declareShared(app, options);
    app.require_subcommand(0, 1);
    CLI::App* const about = app.add_subcommand("about", "Show the plug-in's about box");
    about->add_flag("--headless", options.headless,
                    "Show no window, even where there is a display");
    declareShared(*about, options);
    CLI::App* const open = app.add_subcommand("open", "Open drawings and tell of their fonts");
    declareOpen(*open, options);
    declareShared(*open, options);
    CheckOptions checkOptions;
    CLI::App* const check =
        app.add_subcommand("check", "Tell which fonts drawings miss, loading no plug-in");
    declareCheck(*check, checkOptions, options);
    ReplaceOptions replaceOptions;
    CLI::App* const replace = app.add_subcommand("replace", "Replace fonts in drawings by a table");
    declareReplace(*replace, replaceOptions, options);
    try {
        app.parse(argumentCount, arguments);
        options.about = about->parsed();
        if (check->parsed()) {
            options.check = checkOptions;
            if (checkOptions.paths.empty() && !checkOptions.list) {
                throw CLI::RequiredError("PATH... or --files-from");
            }
        }
        if (replace->parsed()) {
            options.replace = replaceOptions;
            if (!replaceOptions.dryRun && !replaceOptions.inPlace && !replaceOptions.output) {
                throw CLI::RequiredError("--output, --in-place or --dry-run");
            }
        }
        if (!options.selfTest && app.get_subcommands().empty()) {
            throw CLI::RequiredError(
                "open FILE..., check PATH..., replace PATH..., about or --self-test");
        }
        if (options.selfTest && !app.get_subcommands().empty()) {
            throw CLI::ExcludesError("--self-test", app.get_subcommands().front()->get_name());
        }
        if (options.save && options.files.size() != 1) {
            throw CLI::ValidationError("--save", "works with one drawing only");
        }
        if (options.noPlugin && options.plugin) {
            throw CLI::ExcludesError("--no-plugin", "--plugin");
        }
    } catch (const CLI::ParseError& problem) {
        exitStatus = app.exit(problem, output, errors) == 0 ? exitSuccess : exitUsage;
        if (exitStatus != exitSuccess && app.get_subcommands().empty()) {
            suggestOpening(app.remaining(), errors);
        }
        return std::nullopt;
    }
    return options;
}

} // namespace host
