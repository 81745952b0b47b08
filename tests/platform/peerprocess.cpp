// SPDX-License-Identifier: MIT
// Starting and driving the second process of a test.
#include "tests/platform/peerprocess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace platformtest {

PeerProcess::PeerProcess(std::vector<std::string> arguments, Errors errors) {
    arguments.insert(arguments.begin(), PLATFORM_TEST_PEER);
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);

    std::array<std::array<int, 2>, 3> pipes{};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int standard = 0; standard < 3; ++standard) {
        auto& pipe = pipes.at(static_cast<std::size_t>(standard));
        if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe for the second process");
        }
        if (standard != STDERR_FILENO || errors == Errors::Captured) {
            posix_spawn_file_actions_adddup2(&actions, pipe[standard == 0 ? 0 : 1], standard);
        }
    }
    const int failure =
        posix_spawn(&child_, words.front(), &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    for (const int theirs : {pipes[0][0], pipes[1][1], pipes[2][1]}) {
        close(theirs);
    }
    input_ = sys::Descriptor(pipes[0][1]);
    output_ = sys::Descriptor(pipes[1][0]);
    errors_ = sys::Descriptor(pipes[2][0]);
    if (failure != 0) {
        throw std::runtime_error("the second process could not be started");
    }
}

PeerProcess::~PeerProcess() {
    kill();
}

std::string PeerProcess::readLine(int pipe) {
    std::string line;
    char character = 0;
    while (read(pipe, &character, 1) == 1 && character != '\n') {
        line += character;
    }
    return line;
}

void PeerProcess::prompt() {
    if (write(input_.get(), "\n", 1) != 1) {
        throw std::runtime_error("the second process does not listen");
    }
}

void PeerProcess::kill() {
    if (child_ > 0) {
        ::kill(child_, SIGKILL);
        wait();
    }
}

int PeerProcess::wait() {
    input_.close();
    int status = 0;
    while (waitpid(child_, &status, 0) < 0 && errno == EINTR) {
    }
    child_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

RegisteredPeer::RegisteredPeer(std::vector<std::string> arguments)
    : PeerProcess(std::move(arguments)) {
    if (readLine() != "0") {
        throw std::runtime_error("the second process could not register");
    }
}

} // namespace platformtest
