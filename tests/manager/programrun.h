// SPDX-License-Identifier: MIT
// Runs of the program in processes of their own, and waiting for what they do.
#pragma once

#include "tests/manager/sandbox.h"
#include "tests/support/await.h"

#include <cerrno>
#include <cstddef>
#include <gio/gio.h>
#include <iterator>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

namespace managertest {

using testsupport::await;

struct Ending {
    int status = -1;
    std::string output; ///< standard output and standard error
};

/// Has a system call of this process, given by its number, fail for want of space from now on.
inline void refuse(void* number) {
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, *static_cast<const unsigned*>(number), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSPC),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{std::size(steps), steps};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        _exit(99);
    }
}

/// One run of the program.
class ProgramRun {
public:
    ProgramRun(const std::vector<std::string>& arguments, const std::string& log,
               const char* program = GLYPHORA_PROGRAM, std::optional<unsigned> refused = {})
        : log_(log) {
        std::vector<const char*> words{program};
        for (const std::string& argument : arguments) {
            words.push_back(argument.c_str());
        }
        words.push_back(nullptr);
        GSubprocessLauncher* launcher = g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_STDERR_MERGE);
        g_subprocess_launcher_set_stdout_file_path(launcher, log.c_str());
        if (refused) {
            g_subprocess_launcher_set_child_setup(launcher, refuse, &*refused, nullptr);
        }
        program_ = g_subprocess_launcher_spawnv(launcher, words.data(), nullptr);
        g_object_unref(launcher);
    }
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;
    ~ProgramRun() {
        g_subprocess_force_exit(program_);
        g_subprocess_wait(program_, nullptr, nullptr);
        g_object_unref(program_);
    }

    [[nodiscard]] pid_t process() const { return std::stoi(g_subprocess_get_identifier(program_)); }
    [[nodiscard]] std::string output() const { return readBytes(log_); }
    Ending wait() {
        g_subprocess_wait(program_, nullptr, nullptr);
        const bool exited = g_subprocess_get_if_exited(program_) != 0;
        return {exited ? g_subprocess_get_exit_status(program_) : -1, output()};
    }

private:
    std::string log_;
    GSubprocess* program_;
};

} // namespace managertest
