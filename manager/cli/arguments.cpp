// SPDX-License-Identifier: MIT
// One subcommand each; what they do stands in libraryops, activationops and server.
#include "manager/cli/arguments.h"

#include "manager/cli/activationops.h"
#include "manager/cli/announce.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/server.h"
#include "manager/library/error.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>

namespace manager {

namespace {

/// The values that the options fill.
struct Options {
    std::vector<std::string> names;
    bool json = false;
    bool containers = false;
    bool all = false;
    bool quiet = false;
    bool verbose = false;
};

using Action = std::function<int(const Places&)>;

class CommandLine {
public:
    CommandLine() {
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "glyphora " GLYPHORA_VERSION);
        addLibraryCommands();
        addServerCommands();
        addActivationCommands();
    }

    int run(int argc, char** argv) {
        try {
            app_.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            if (argc > 1 && error.get_exit_code() != 0 && app_.get_subcommands().empty()) {
                warn(std::string(argv[1][0] == '-' ? "unknown option '" : "unknown command '") +
                     argv[1] + "'; see glyphora --help");
                return exitUsage;
            }
            return app_.exit(error) == 0 ? exitSuccess : exitUsage;
        }
        return action_(Places::fromEnvironment());
    }

private:
    CLI::App* command(const char* name, const char* help, Action action) {
        CLI::App* added = app_.add_subcommand(name, help);
        added->callback([this, action = std::move(action)] { action_ = action; });
        return added;
    }

    void addLibraryCommands() {
        command("add", "Record folders of font files and scan them",
                [this](const Places& places) { return addCommand(places, options_.names); })
            ->add_option("folder", options_.names, "Folders")
            ->required();
        command("remove", "Forget recorded folders",
                [this](const Places& places) { return removeCommand(places, options_.names); })
            ->add_option("folder", options_.names, "Folders")
            ->required();
        command("scan", "Look for new, changed and removed font files",
                [this](const Places& places) { return scanCommand(places, options_.quiet); })
            ->add_flag("--quiet", options_.quiet, "Print new problems alone");
        CLI::App* list = command("list", "List the recorded folders", [this](const Places& places) {
            return listCommand(places, options_.json         ? Listing::Json
                                       : options_.containers ? Listing::Containers
                                                             : Listing::Folders);
        });
        list->add_flag("--json", options_.json, "Print everything as JSON");
        list->add_flag("--containers", options_.containers, "List what the folders hold");
    }

    void addServerCommands() {
        command("serve", "Answer commands until told to quit", [this](const Places& places) {
            return serveCommand(places, options_.verbose);
        })->add_flag("--verbose", options_.verbose, "Log each command to standard error");
        command("quit", "Tell the server to quit", [](const Places&) {
            askServerToQuit();
            return static_cast<int>(exitSuccess);
        });
        command("status", "Tell what runs, what there is and what is active",
                [this](const Places& places) { return statusCommand(places, options_.json); })
            ->add_flag("--json", options_.json, "Print it as JSON");
        CLI::App* history =
            command("history", "Tell what was done since the server was last started",
                    [this](const Places& places) {
                        return historyCommand(places, options_.all, options_.json);
                    });
        history->add_flag("--all", options_.all, "Tell all that is kept");
        history->add_flag("--json", options_.json, "Print it as JSON");
    }

    void addActivationCommands() {
        command("activate", "Make containers visible to the desktop",
                [this](const Places& places) { return activateCommand(places, options_.names); })
            ->add_option("container", options_.names,
                         "Numbers of containers, PostScript names or families")
            ->required();
        CLI::App* deactivate =
            command("deactivate", "Take containers back", [this](const Places& places) {
                return deactivateCommand(places, options_.names);
            });
        auto* all = deactivate->add_flag("--all", options_.all, "Everything that is active");
        auto* names = deactivate->add_option("container", options_.names,
                                             "Numbers of containers or families");
        all->excludes(names);
        deactivate->parse_complete_callback([this] {
            if (!options_.all && options_.names.empty()) {
                throw CLI::ValidationError("deactivate", "name containers, or give --all");
            }
        });
    }

    CLI::App app_{
        "The Glyphora font manager: keeps a library of fonts and activates them on demand",
        "glyphora"};
    Options options_;
    Action action_;
};

// What was asked for is not done before it is written.
void finishOutput() {
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        throw errno != 0 ? systemError("standard output", "cannot be written", errno)
                         : Error("standard output: cannot be written");
    }
}

} // namespace

int runCommandLine(int argc, char** argv) {
    // A reader that went away is met as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const int status = CommandLine().run(argc, argv);
        finishOutput();
        return status;
    } catch (const std::exception& error) {
        warn(error.what());
        return exitFailure;
    }
}

} // namespace manager
