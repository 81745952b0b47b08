// SPDX-License-Identifier: MIT
// One subcommand each; what they do stands in libraryops, activationops, statusops and server.
#include "manager/cli/arguments.h"

#include "manager/cli/activationops.h"
#include "manager/cli/announce.h"
#include "manager/cli/buyops.h"
#include "manager/cli/collectops.h"
#include "manager/cli/drawingfaces.h"
#include "manager/cli/fontfiles.h"
#include "manager/cli/groupops.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/options.h"
#include "manager/cli/progress.h"
#include "manager/cli/report.h"
#include "manager/cli/searchops.h"
#include "manager/cli/searchoptions.h"
#include "manager/cli/server.h"
#include "manager/cli/settling.h"
#include "manager/cli/statusops.h"
#include "manager/cli/tally.h"
#include "manager/library/database.h"
#include "manager/library/error.h"
#include "manager/view/texts.h"
#include "manager/view/window.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace manager {

namespace {

/// The values that the options fill.
struct Options {
    std::vector<std::string> names;
    std::vector<std::string> drawings;
    std::string group;
    std::string newName;
    std::string to;
    SearchOptions search;
    std::chrono::seconds time{};
    std::string pictures;
    bool untilLogout = false;
    bool request = false;
    bool json = false;
    bool containers = false;
    bool problems = false;
    bool all = false;
    bool quiet = false;
    bool progress = false;
    bool translated = false;
    bool verbose = false;

    [[nodiscard]] Reason reason() const {
        return untilLogout         ? Reason::untilLogout()
               : time.count() != 0 ? Reason::forTime(time)
                                   : Reason::byHand();
    }
};

using Action = std::function<int(const Places&)>;

constexpr const char* nameHelp =
    "A number, name, pattern, collection:NAME, tag:NAME or folder:PATH";

class CommandLine {
public:
    CommandLine() {
        app_.require_subcommand(1);
        setHelp(app_);
        app_.add_flag("--translated", options_.translated,
                      "Tell problems in the language of the locale");
        app_.set_version_flag("--version", "glyphora " GLYPHORA_VERSION, "Print the version");
        addLibraryCommands();
        addActivationCommands();
        addGroupCommands(GroupKind::Collection, "Name containers together, to switch them as one");
        addGroupCommands(GroupKind::Tag, "Mark containers by a word");
        addServerCommands();
        app_.footer("\"glyphora COMMAND --help\" tells more of one, glyphora(1) of all.");
    }

    int run(int argc, char** argv) {
        try {
            parse(app_, argc, argv);
        } catch (const CLI::ParseError& error) {
            if (error.get_exit_code() == 0) { // help or version
                return app_.exit(error);
            }
            const std::string problem = problemOf(app_, error);
            warn(problem);
            // The options are not read to their end.
            if (std::find(argv, argv + argc, std::string_view("--json")) != argv + argc) {
                printJson({{"problems", nlohmann::json::array({problem})}});
            }
            return exitUsage;
        }
        if (options_.translated) {
            chooseUsersLanguage();
        }
        if (options_.progress) {
            setProgress(ProgressForm::Lines);
        } else if (!options_.quiet && !options_.json && isatty(STDERR_FILENO) != 0) {
            setProgress(ProgressForm::Terminal);
        }
        try {
            return action_(Places::fromEnvironment());
        } catch (const std::exception& error) {
            if (options_.json) {
                printJson({{"problems", nlohmann::json::array({error.what()})}});
            }
            throw;
        }
    }

private:
    CLI::App* command(const char* name, const char* help, Action action) {
        return withJson(jsonless(app_, name, help, std::move(action)));
    }
    CLI::App* jsonless(CLI::App& parent, const char* name, const char* help, Action action) {
        CLI::App* added = parent.add_subcommand(name, help)->group(group_);
        added->callback([this, action = std::move(action)] { action_ = action; });
        return added;
    }
    CLI::App* withJson(CLI::App* command) {
        command->add_flag("--json", options_.json, "Print it as JSON");
        return command;
    }
    CLI::App* withProgress(CLI::App* command) {
        command->add_flag("--progress", options_.progress,
                          "Tell how far it is, as lines of JSON on standard error");
        return command;
    }
    CLI::Option* addNames(CLI::App& command, const char* name, const char* help) {
        return addTexts(command, name, help, options_.names);
    }

    void addLibraryCommands() {
        group_ = "Library";
        const auto add = [this](const Places& places) {
            return addCommand(places, options_.names, options_.json);
        };
        addNames(*withProgress(command(
                     "add", "Record folders, or copy font files or archives, and scan them", add)),
                 "path", "A folder of font files, a font file, or an archive of them")
            ->required();
        addNames(*command("remove", "Forget recorded folders",
                          [this](const Places& places) {
                              return removeCommand(places, options_.names, options_.json);
                          }),
                 "folder", "A folder of font files")
            ->required();
        withProgress(command("scan", "Look for new, changed and removed font files",
                             [this](const Places& places) {
                                 return scanCommand(places, options_.quiet, options_.json);
                             }))
            ->add_flag("--quiet", options_.quiet, "Print new problems alone");
        addSearch();
        addNames(*command("info", "Tell everything about faces",
                          [this](const Places& places) {
                              return infoCommand(places, options_.names, options_.json);
                          }),
                 "container", nameHelp)
            ->required();
        CLI::App* show =
            jsonless(app_, "show", "Show the library in a window", [this](const Places& places) {
                return showCommand(places, options_.names, options_.request, options_.pictures);
            });
        addNames(*show, "word", "What to search for, or a font file or drawing to look at");
        show->add_flag("--request", options_.request,
                       "Show what may be used for the fonts of a command on standard input");
        addText(*show, "--pictures", "FOLDER", "Write pictures of the views instead",
                options_.pictures);
        CLI::App* buy =
            command("buy", "Open pages where fonts can be had", [this](const Places& p) {
                return buyCommand(p, options_.names, options_.request, options_.json);
            });
        buy->add_flag("--request", options_.request, "For a command's fonts on standard input");
        addNames(*buy, "name", "A PostScript name");
        buy->parse_complete_callback([this] {
            if (options_.request != options_.names.empty()) {
                throw CLI::ValidationError("name fonts, or give --request");
            }
        });
        command("duplicates", "List files with the same bytes",
                [this](const Places& places) { return duplicatesCommand(places, options_.json); });
        CLI::App* collect =
            command("collect", "Copy fonts to a new folder", [this](const Places& places) {
                return collectCommand(places, options_.names, options_.to, options_.json);
            });
        withProgress(collect);
        addText(*collect, "--to", "FOLDER", "The folder to make", options_.to)->required();
        addNames(*collect, "container", nameHelp)->required();
        CLI::App* list = command("list", "List the recorded folders", [this](const Places& places) {
            return listCommand(places, options_.json         ? Listing::Json
                                       : options_.containers ? Listing::Containers
                                       : options_.problems   ? Listing::Problems
                                                             : Listing::Folders);
        });
        auto* containers =
            list->add_flag("--containers", options_.containers, "List what the folders hold");
        list->add_flag("--problems", options_.problems, "List the files that are no fonts")
            ->excludes(containers);
    }

    void addSearch() {
        CLI::App* search = command("search", "Find faces of the library", [this](const Places& p) {
            return searchCommand(p, options_.search.query(), options_.search.similar(),
                                 options_.json);
        });
        options_.search.addTo(*search);
    }

    void addServerCommands() {
        group_ = "Server";
        jsonless(app_, "serve", "Answer commands until told to quit", [this](const Places& places) {
            return serveCommand(places, options_.verbose);
        })->add_flag("--verbose", options_.verbose, "Log each command to standard error");
        command("quit", "Tell the server to quit", [this](const Places&) {
            Tally tally(options_.json);
            askServerToQuit();
            return tally.finish();
        });
        command("status", "Tell what runs, what there is and what is active",
                [this](const Places& places) { return statusCommand(places, options_.json); });
        command("history", "Tell what was done since the server last started",
                [this](const Places& places) {
                    return historyCommand(places, options_.all, options_.json);
                })
            ->add_flag("--all", options_.all, "Tell all that is kept");
    }

    void addActivationCommands() {
        group_ = "Activation";
        CLI::App* activate = command(
            "activate", "Make containers visible to the desktop", [this](const Places& places) {
                return activateCommand(places, options_.names, options_.reason(), options_.json);
            });
        addNames(*withProgress(activate), "container", nameHelp)->required();
        auto* time =
            addOption(*activate, "--for", "TIME", "For a time: 90s, 30min, 2h, 7d", Times::Once,
                      [this](const std::string& text) { options_.time = toTime(text); });
        activate->add_flag("--until-logout", options_.untilLogout, "Until you log out")
            ->excludes(time);
        CLI::App* deactivate =
            command("deactivate", "Take containers back", [this](const Places& places) {
                return deactivateCommand(places, options_.names, options_.all, options_.json);
            });
        deactivate->add_flag("--all", options_.all, "Everything that is active");
        addNames(*withProgress(deactivate), "container", nameHelp);
        deactivate->parse_complete_callback([this] {
            if (options_.all != options_.names.empty()) {
                throw CLI::ValidationError("name containers, or give --all");
            }
        });
        // Of a window and of changes, which they have done by processes of their own; not for
        // people.
        withProgress(command("change", "Change sets as told", [this](const Places& places) {
            return changeCommand(places, options_.json);
        }));
        addNames(*jsonless(app_, "settle", "Finish a change",
                           [this](const Places& places) {
                               return settleCommand(places, options_.names);
                           }),
                 "word", "The process, and its containers");
        addNames(*jsonless(app_, "read-fonts", "Tell a window what font files hold",
                           [this](const Places&) { return readFontsCommand(options_.names); }),
                 "file", "A font file");
        addNames(*withProgress(command("read-drawings", "Tell a window what drawings use",
                                       [this](const Places&) {
                                           return readDrawingsCommand(options_.names,
                                                                      options_.json);
                                       })),
                 "file", "A drawing");
        jsonless(app_, "kick", "Tell programs", [](const Places&) { return kickCommand(); });
        for (const char* own : {"settle", "kick", "change", "read-fonts", "read-drawings"}) {
            app_.get_subcommand(own)->group("");
        }
    }

    void addGroupCommands(GroupKind kind, const char* help) {
        group_ = "Collections and tags";
        CLI::App* parent = app_.add_subcommand(std::string(wordOf(kind)), help)->group(group_);
        parent->require_subcommand(1);
        group_ = "Commands";
        const auto add = [this, parent, kind](const char* name, const char* text, auto run) {
            return withJson(jsonless(*parent, name, text, [this, kind, run](const Places& places) {
                return run(places, GroupTitle{kind, options_.group});
            }));
        };
        const auto addTo = [this](const Places& places, const GroupTitle& title) {
            return addToGroup(places, title, {options_.names, options_.drawings}, options_.json);
        };
        const auto removeFrom = [this](const Places& places, const GroupTitle& title) {
            return removeFromGroup(places, title, options_.names, options_.json);
        };
        const auto rename = [this](const Places& places, const GroupTitle& title) {
            return renameGroup(places, title, options_.newName, options_.json);
        };
        const auto list = [this](const Places& places, const GroupTitle& title) {
            return listGroups(places, title, options_.json);
        };
        CLI::App* adding = add("add", "Put containers in; made if need be", addTo);
        addWord(*adding, "name", "Its name", options_.group)->required();
        addNames(*adding, "container", nameHelp);
        addOption(*adding, "--from", "FILE", "What a drawing uses", Times::Several,
                  [this](const std::string& file) { options_.drawings.push_back(file); });
        adding->parse_complete_callback([this] {
            if (options_.names.empty() && options_.drawings.empty()) {
                throw CLI::ValidationError("name containers, or give --from");
            }
        });
        CLI::App* removing = add("remove", "Take containers out, or remove all of it", removeFrom);
        addWord(*removing, "name", "Its name", options_.group)->required();
        addNames(*removing, "container", "A number, name or pattern; without any: all of it");
        CLI::App* renaming = add("rename", "Give it another name", rename);
        addWord(*renaming, "name", "Its name", options_.group)->required();
        addWord(*renaming, "new name", "Its new name", options_.newName)->required();
        addWord(*add("list", "List them, or what is in one", list), "name", "Its name",
                options_.group);
    }

    CLI::App app_{
        "The Glyphora font manager: keeps a library of fonts and activates them on demand",
        "glyphora"};
    Options options_;
    Action action_;
    const char* group_ = ""; ///< under which the help lists commands that are added
};

// What was asked for is not done before it is written. Who reads the output may have had enough.
int finishOutput(int status) {
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        pollfd output{STDOUT_FILENO, POLLOUT, 0};
        if (poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0) {
            return exitFailure;
        }
        throw errno != 0 ? systemError("standard output", "cannot be written", errno)
                         : Error("standard output: cannot be written");
    }
    return status;
}

} // namespace

int runCommandLine(int argc, char** argv) {
    // A reader that went away is met as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    const auto run = [&] {
        try {
            return CommandLine().run(argc, argv);
        } catch (const DamagedDatabase&) { // met before anything was changed; mended when it is
            return CommandLine().run(argc, argv); // opened again
        }
    };
    try {
        return finishOutput(run());
    } catch (const std::exception& error) {
        warn(error.what());
        return exitFailure;
    }
}

} // namespace manager
