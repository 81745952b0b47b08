// SPDX-License-Identifier: MIT
// Why a container is active. Reasons are kept in the record of its set, and it leaves with the
// last.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// A process, told from a later one of the same number by when it started.
struct ProcessMark {
    std::int32_t id = 0;
    std::int64_t started = 0; ///< clock ticks after the machine did
    std::string boot;         ///< the kernel's id of that run of the machine
    bool operator==(const ProcessMark&) const = default;
};

/// nullopt: there is no such process.
[[nodiscard]] std::optional<ProcessMark> markOf(std::int32_t processId);
[[nodiscard]] bool isRunning(const ProcessMark& process);
/// Whether it is a process of this user.
[[nodiscard]] bool isOwn(std::int32_t processId);

struct Reason {
    enum class Kind {
        ByHand,      ///< a person said so; it ends when a person says so
        Document,    ///< a document of `process` needs it; ends with the process
        InUse,       ///< it was to go, but `process` has it open; ends with the process
        UntilLogout, ///< ends with the login named by `session`
        UntilTime,   ///< ends at `time`
    };
    Kind kind = Kind::ByHand;
    ProcessMark process = {};
    std::string session = {};
    std::int64_t time = 0; ///< seconds since 1970
    bool operator==(const Reason&) const = default;

    static Reason byHand() { return {}; }
    /// nullopt: there is no such process.
    static std::optional<Reason> forDocumentOf(std::int32_t processId);
    static Reason inUseBy(ProcessMark process) { return {Kind::InUse, std::move(process)}; }
    /// Until the user logs out everywhere. Throws Error when nothing tells of that: there is no
    /// $XDG_RUNTIME_DIR.
    static Reason untilLogout();
    /// From now.
    static Reason forTime(std::chrono::seconds time);
};

/// Whether the reason still stands.
[[nodiscard]] bool stands(const Reason& reason);
/// Removes those that do not stand any more.
void removeEnded(std::vector<Reason>& reasons);
/// Adds a reason. Of a kind that there is once (by hand, until logout, until a time) the new one
/// takes the old one's place.
void addReason(std::vector<Reason>& reasons, const Reason& reason);

/// What becomes of a container's reasons.
struct ReasonChange {
    std::vector<Reason> added = {};
    std::vector<Reason> removed = {};
    [[nodiscard]] bool isEmpty() const { return added.empty() && removed.empty(); }
    bool operator==(const ReasonChange&) const = default;
};
/// What lies between two states, of what stands.
[[nodiscard]] ReasonChange changeOf(std::vector<Reason> before, std::vector<Reason> after);

/// For people: "by hand", "for a document of inkscape (4711)", "in use by inkscape (4711)", "until
/// logout", "until 2026-01-31 12:00".
[[nodiscard]] std::string describe(const Reason& reason);
/// The same with words that `translated` gives for the English ones.
[[nodiscard]] std::string describeIn(const Reason& reason, std::string (*translated)(const char*));

/// The name of a running program, or an empty one.
[[nodiscard]] std::string programName(std::int32_t processId);

/// A reason's field line in a set record, with its line feed.
[[nodiscard]] std::string reasonLine(const Reason& reason);
/// nullopt: the fields, "reason" first, are not those of a reason.
[[nodiscard]] std::optional<Reason> reasonOf(const std::vector<std::string>& fields);

} // namespace manager
