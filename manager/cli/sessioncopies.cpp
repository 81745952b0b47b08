// SPDX-License-Identifier: MIT
#include "manager/cli/sessioncopies.h"

#include "manager/activation/filesteps.h"
#include "manager/cli/ownprocess.h"
#include "manager/cli/report.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <sys/wait.h>

namespace manager {

namespace {

// In another process: a scan forks, and this process may have threads of the bus by now.
void scanApart() {
    const std::array<std::string, 2> words = {"scan", "--quiet"};
    pid_t process = -1;
    if (const int code = startOwn({words}, process); code != 0) {
        throw systemError("scan", "cannot be started", code);
    }
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

SessionCopies::~SessionCopies() {
    if (isEmpty()) {
        return;
    }
    for (const std::string& folder : folders_) {
        try {
            removeTree(folder);
        } catch (const std::exception& error) {
            warn(error.what());
        }
    }
    try {
        scanApart();
    } catch (const std::exception& error) {
        warn(error.what());
    }
}

void SessionCopies::copy(const std::string& file) {
    // A folder of its own for each, so that no two are one container that is switched as a whole.
    std::string own = joinPath(makeSessionFolder(places_), "font-XXXXXX");
    if (mkdtemp(own.data()) == nullptr) {
        throw systemError(own, "cannot be made", errno);
    }
    folders_.push_back(own); // one that is not whole goes as well
    cloneOrCopy(file, joinPath(own, std::filesystem::path(file).filename().string()));
}

void SessionCopies::keep(const std::string& folder) {
    std::erase(folders_, folder);
}

} // namespace manager
