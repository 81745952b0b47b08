// SPDX-License-Identifier: MIT
// The entry point of a plug-in, and the records that its messages bring. All records are owned by
// the host and valid for the duration of the call.
#pragma once

#include "sp/basic.h"

/// Called by the host, on its main thread, for every message. `caller` and `selector` name the
/// message; `message` points to the record that belongs to them, which begins with SPMessageData.
using SPEntryProc = SPErr (*)(const char* caller, const char* selector, void* message);
constexpr const char* kSPEntryName = "PluginMain";

/// What every message record begins with.
struct SPMessageData {
    const SPBasicSuite* basic = nullptr;
    SPPluginRef self = nullptr;
    /// The plug-in's own value, kept by the host from call to call, over unloading as well.
    void* globals = nullptr;
};

/// "SP Interface": start-up, shut-down, about.
struct SPInterfaceMessage {
    SPMessageData d;
};
/// "SP Access": the plug-in's code was loaded again, or is about to be unloaded.
struct SPAccessMessage {
    SPMessageData d;
};
/// "SP Properties": property requests of the plug-in manager.
struct SPPropertiesMessage {
    SPMessageData d;
};
