// SPDX-License-Identifier: MIT
// This process as an application of the desktop: its signature, and the events that wait for it.
// The documented services take both from the system's start of an application; here a program says
// so itself.
#pragma once

#include "platform/types.h"

enum PLInstances : std::int32_t {
    kPLManyInstances = 0, ///< further processes may register the same signature
    kPLOneInstance = 1,   ///< the first process keeps the signature; later ones get an error
};

enum : OSErr {
    kPLAlreadyRunningErr = -610, ///< another process holds the single instance
};

/// Makes this process known on the session bus under `signature` and its process id, so that others
/// find it and send it events. Starts a private bus when the session has none, says so on standard
/// error, and ends that bus with this process. Returns noErr; kPLAlreadyRunningErr;
/// connectionInvalid: no bus could be had; paramErr: registered already.
/// Call once, from the thread that lives as long as the process. `name` (UTF-8, may be
/// null) is told to others in ProcessInfoRec::processName.
OSStatus PLRegisterApplication(OSType signature, PLInstances instances, const char* name);

/// Gives the signature back and closes the connection; waiting events are dropped. Safe
/// unregistered.
void PLUnregisterApplication();

/// A descriptor that is readable while events wait or the bus is gone; -1 before registration.
/// Owned by the library.
int PLEventFileDescriptor();

/// Runs the installed handler of every waiting event, in the calling thread and in order of
/// arrival, and answers the senders. Returns the number of events dispatched, or connectionInvalid
/// once the bus is gone.
std::int32_t PLDispatchPendingEvents();

/// Waits up to `milliseconds` (-1: for ever) for an event and dispatches; result as above
/// (0: none came).
std::int32_t PLWaitForEvents(std::int32_t milliseconds);
