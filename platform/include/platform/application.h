// SPDX-License-Identifier: MIT
// This process as an application of the desktop: its signature, and the events that wait for it.
// Other systems take both from the way in which an application is started; here a program registers
// itself.
//
// The [handler-thread] is the one that dispatches pending events. A program that also has a
// [main-thread], as the host has, dispatches there.
#pragma once

#include "platform/types.h"

enum PLInstances : std::int32_t {
    kPLManyInstances = 0, ///< further processes may register the same signature
    kPLOneInstance = 1,   ///< the first process keeps the signature; later ones get an error
};

enum : OSErr {
    kPLAlreadyRunningErr = -610, ///< another process holds the single instance
};

/// [any-thread] Makes this process known on the session bus under `signature` and its process id,
/// so that others find it and send it events. Starts a private bus when the session names none or,
/// with kPLManyInstances, one that cannot be reached; names it in DBUS_SESSION_BUS_ADDRESS to the
/// applications that this one launches, and ends it with this process, also when this process is
/// killed. Standard error tells of a bus that was started or could not be had. Returns noErr;
/// kPLAlreadyRunningErr; connectionInvalid: no bus could be had, or it went; paramErr: registered
/// already, `name` is not valid UTF-8, or no descriptors are left. The calling thread counts as the
/// [handler-thread] until another dispatches. `name` (UTF-8, may be null) is told to others in
/// ProcessInfoRec::processName.
[[nodiscard]] OSStatus PLRegisterApplication(OSType signature, PLInstances instances,
                                             const char* name);

/// [any-thread] Gives the signature back; senders of waiting events get an error, and answers
/// already given have left when this returns. Installed handlers stay. Safe unregistered, and
/// inside a handler.
void PLUnregisterApplication();

/// [any-thread] A descriptor that is readable while events wait or the bus is gone; -1 while not
/// registered. Owned by the library. Once the bus is gone it stays readable until
/// PLUnregisterApplication, after which a new registration tries for a bus again.
[[nodiscard]] int PLEventFileDescriptor();

/// [main-thread] Has `routine` called whenever Delay is about to put this thread to sleep, so that
/// a program can show what would otherwise not be seen until then; nullptr for nothing.
void PLBeforeDelay(void (*routine)());

/// [handler-thread] Runs the installed handler of every event that waits at the time of the call,
/// in the calling thread and in order of arrival, and answers the senders. Returns the number of
/// events dispatched, or connectionInvalid once the bus is gone or while not registered. An
/// exception of a handler passes through; its sender gets an error.
std::int32_t PLDispatchPendingEvents();

/// [handler-thread] Waits up to `milliseconds` (-1: for ever) for an event and dispatches; result
/// as above. 0: none came, or a signal of the kernel ended the wait.
std::int32_t PLWaitForEvents(std::int32_t milliseconds);
