// SPDX-License-Identifier: MIT
#include "manager/cli/guestprocesses.h"

#include "manager/cli/ownprocess.h"
#include "manager/library/error.h"
#include "system/descriptor.h"

#include <array>
#include <cerrno>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace manager {

namespace {

/// A file of this text that nobody waits for to be read.
sys::Descriptor fileOf(const std::string& text) {
    sys::Descriptor file(memfd_create("command", MFD_CLOEXEC));
    if (!file || write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
        lseek(file.get(), 0, SEEK_SET) != 0) {
        return {};
    }
    return file;
}

} // namespace

std::string GuestProcesses::start(const char* argument, const std::string& command) {
    const std::string begin = std::string(argument) + ": ";
    if (running_.size() == maximum) {
        return begin + "too many wait to be dealt with";
    }
    const sys::Descriptor input = fileOf(command);
    if (!input) {
        return systemError(argument, "the command cannot be handed over", errno).what();
    }
    const std::array<std::string, 2> words = {argument, "--request"};
    pid_t process = -1;
    if (const int code = startOwn({words, input.get(), true}, process); code != 0) {
        return systemError(argument, "cannot be started", code).what();
    }
    running_.push_back({process, argument});
    return {};
}

std::vector<std::string> GuestProcesses::takeFailures() {
    std::vector<std::string> failures;
    std::erase_if(running_, [&](const Guest& guest) {
        int status = 0;
        if (waitpid(guest.process, &status, WNOHANG) != guest.process) {
            return false;
        }
        if (WIFSIGNALED(status)) {
            failures.push_back(guest.argument + ": ended by signal " +
                               std::to_string(WTERMSIG(status)));
        } else if (WEXITSTATUS(status) != 0) {
            failures.push_back(guest.argument + ": failed with status " +
                               std::to_string(WEXITSTATUS(status)));
        }
        return true;
    });
    return failures;
}

} // namespace manager
