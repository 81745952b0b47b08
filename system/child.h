// SPDX-License-Identifier: MIT
// A process of another program that its owner talks to over a socket, and that goes with its owner.
#pragma once

#include "system/descriptor.h"

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace sys {

/// How a process ended: by a signal, or with a status.
struct Ending {
    int signal = 0;
    int status = 0;
};

/// Kills its process when it goes. [one-thread]
class Child {
public:
    /// Where its standard output goes.
    enum class Output { Nowhere, Socket };

    /// Starts `program`, whose standard input is one end of a socket. It inherits no other
    /// descriptor of this process; what it writes to standard error goes nowhere. Throws
    /// `std::system_error` when it cannot be started.
    Child(const std::filesystem::path& program, std::span<const std::string> arguments,
          Output output = Output::Nowhere);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { static_cast<void>(end()); }

    /// This side of the socket. It does not block.
    [[nodiscard]] int socket() const noexcept { return socket_.get(); }
    /// Its number; 0 or below once it was ended.
    [[nodiscard]] pid_t process() const noexcept { return process_; }
    /// Kills it unless it has ended by itself, and tells how it ended. Blocks until it has: one
    /// that waits for a broken disk may take forever.
    Ending end() noexcept;
    /// The same without blocking; nothing: it is still about to end.
    [[nodiscard]] std::optional<Ending> tryEnd() noexcept;
    /// Kills it and waits for nothing: what the system keeps of it is taken away when another
    /// process is started or counted.
    void letGo();
    /// How many of this process' were let go and have not ended yet. [any-thread]
    [[nodiscard]] static std::size_t lingering();

private:
    std::optional<Ending> wait(int options) noexcept;

    Descriptor socket_;
    pid_t process_ = -1;
};

/// Has the calling process end when the thread that started it does, write no core file and take at
/// most `memory` bytes of address space.
void limitThisProcess(std::size_t memory) noexcept;
/// Allows the calling process `seconds` more of processor time, and the rest of the one that has
/// begun; SIGXCPU ends it then.
void allowProcessorTime(unsigned seconds) noexcept;

} // namespace sys
