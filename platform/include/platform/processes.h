// SPDX-License-Identifier: MIT
// The running applications of this user's session, and starting one more.
#pragma once

#include "platform/launchservices.h"
#include "platform/types.h"

/// Names one process in a walk: its signature and its process id. {0, kNoProcess} stands before the
/// first.
struct ProcessSerialNumber {
    std::uint32_t highLongOfPSN = 0;
    std::uint32_t lowLongOfPSN = 0;
};
enum : std::uint32_t { kNoProcess = 0 };

/// What is told of a process. The caller sets processInfoLength to 0 or to sizeof(ProcessInfoRec),
/// and processName to null or to a buffer of 256 bytes that receives a zero-terminated name.
struct ProcessInfoRec {
    std::uint32_t processInfoLength = 0;
    char* processName = nullptr;
    ProcessSerialNumber processNumber;
    OSType processType = 0;
    OSType processSignature = 0;
    std::int32_t processID = 0; ///< the kernel's id
};

/// [any-thread] Advances `psn` to the next process known on the bus; after the last (or without a
/// bus) sets it to kNoProcess and returns procNotFound. A walk that begins at kNoProcess asks the
/// bus anew (about 0.1 ms), a later step goes on in the list that it gave; processes that have
/// ended since, and names that belong to another process than they say, are passed over. paramErr:
/// null.
OSErr GetNextProcess(ProcessSerialNumber* psn);
/// [any-thread] Fills `info`, all of it but the two fields that the caller sets. The name is the
/// one given at the registration, else the kernel's. procNotFound: `psn` names no process
/// (kNoProcess included) or it has ended; then `info` is left alone. paramErr: null, or an unknown
/// length.
[[nodiscard]] OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info);

enum : std::uint16_t {
    extendedBlock = 0x4C43,
    launchContinue = 0x4000,
    launchNoFileFlags = 0x0800,
    launchDontSwitch = 0x0200,
};
enum : std::uint32_t { extendedBlockLen = 32 };

/// What to start, and how. `launchAppSpec` is not owned.
struct LaunchParamBlockRec {
    std::uint32_t reserved1 = 0;
    std::uint16_t reserved2 = 0;
    std::uint16_t launchBlockID = 0;
    std::uint32_t launchEPBLength = 0;
    std::uint16_t launchFileFlags = 0;
    std::uint16_t launchControlFlags = 0;
    const FSSpec* launchAppSpec = nullptr;
    ProcessSerialNumber launchProcessSN;
    void* launchAppParameters = nullptr;
};

/// [any-thread] Starts the application whose desktop entry `launchAppSpec` names, by its Exec line
/// and without files, and returns without waiting for it. It runs in a session of its own with this
/// process' environment (and the address of a private bus, if this process started one); its
/// standard streams are /dev/null, it has no other descriptor of this process, and is nobody's to
/// reap. The control flags are not looked at: it never takes the place or the focus of the caller.
/// paramErr: block not extendedBlock, or no FSSpec; fnfErr: no such entry, or its program is
/// missing; memFullErr: it could not be started.
OSErr LaunchApplication(LaunchParamBlockRec* parameters);
