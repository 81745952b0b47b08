// SPDX-License-Identifier: MIT
// The entry point of a plug-in, and the records that its messages bring. The host owns all records;
// they are valid until the entry point returns.
#pragma once

#include "sp/basic.h"

#include <cstddef>
#include <type_traits>

/// [main-thread] Called by the host for every message. `caller` and `selector` name the message;
/// `message` points to the record that belongs to them, which begins with SPMessageData. All three
/// are the host's and valid until the return.
using SPEntryProc = SPErr (*)(const char* caller, const char* selector, void* message);
constexpr const char* kSPEntryName = "PluginMain";

/// What every message record begins with.
struct SPMessageData {
    const SPBasicSuite* basic = nullptr; ///< owned by the host, the same table in every message
    SPPluginRef self = nullptr;          ///< owned by the host, the same in every message
    /// Owned by the plug-in. The host keeps it from one message to the next, also while the
    /// plug-in's code is unloaded, and never looks at what it points to.
    void* globals = nullptr;
};
static_assert(std::is_standard_layout_v<SPMessageData>);
static_assert(offsetof(SPMessageData, basic) == 0);
static_assert(offsetof(SPMessageData, self) == sizeof(void*));
static_assert(offsetof(SPMessageData, globals) == 2 * sizeof(void*));
static_assert(sizeof(SPMessageData) == 3 * sizeof(void*));

/// Whether each of `Messages` begins with SPMessageData, holds `fields` pointers more, and nothing
/// else.
template <std::size_t fields, typename... Messages>
constexpr bool
    areMessageRecords = ((std::is_standard_layout_v<Messages> && offsetof(Messages, d) == 0 &&
                          sizeof(Messages) == sizeof(SPMessageData) + fields * sizeof(void*)) &&
                         ...);

/// "SP Interface": start-up, shut-down, about.
struct SPInterfaceMessage {
    SPMessageData d;
};
/// "SP Access": the plug-in's code has been loaded again, or is about to be unloaded.
struct SPAccessMessage {
    SPMessageData d;
};
/// "SP Properties": property requests of the plug-in manager.
struct SPPropertiesMessage {
    SPMessageData d;
};
static_assert(areMessageRecords<0, SPInterfaceMessage, SPAccessMessage, SPPropertiesMessage>);
