// SPDX-License-Identifier: MIT
// The server: what it does with a command and after it. Who waits for what is in serverloop.
#pragma once

#include "manager/activation/activation.h"
#include "manager/cli/folderwatch.h"
#include "manager/exchange/exchange.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// [main-thread] A command is answered before anybody is told of what it changed.
class Server {
public:
    /// Mends what a crash left. Throws Error.
    Server(const Places& places, bool verbose);

    /// Answers one command text. Never throws: what goes wrong stands in the reply.
    std::string answer(std::string_view command);

    /// Tells others of changes; to be called when no sender waits for an answer any more.
    void tellOthers();

    /// Whether the folders are to be scanned because the index was begun anew; asked once.
    bool takeScanNeed() {
        const bool needed = scanNeeded_;
        scanNeeded_ = false;
        return needed;
    }
    /// Watches the folders that the index knows by now, and for those recorded folders that are
    /// away. Whether there is something new among them.
    bool watchFolders(FolderWatch& watch);

    [[nodiscard]] Activation& activation() { return activation_; }

private:
    void openLibrary();
    void note(const Answer& answer);

    Places places_;
    bool verbose_;
    std::unique_ptr<Library> library_;
    Activation activation_;
    std::vector<ChangeTarget> targets_; ///< those that asked lately, the last one at the end
    bool changed_ = false;
    bool scanNeeded_ = false;
};

/// Registers under the manager's signature and answers until told to quit: by a 'quit' event,
/// SIGTERM, SIGINT or SIGHUP, or because the bus is gone. When another server runs already, says so
/// and returns exitSuccess. Throws Error.
int serveCommand(const Places& places, bool verbose);

} // namespace manager
