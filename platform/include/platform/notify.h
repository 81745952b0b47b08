// SPDX-License-Identifier: MIT
// Named, system-wide change notifications, polled by token.
//
// A posting is a broadcast signal on the session bus, counted per name by the [bus-thread] as it
// arrives; a check compares two counters and may be made a thousand times a second. All calls are
// [any-thread].
//
// The signal is Posted of the interface that has the notification's name, at /org/glyphora/Notify1.
// When the bus goes away, tokens stay valid; they count again once any service of this library has
// reached a new bus.
#pragma once

#include <cstdint>

enum : std::uint32_t {
    NOTIFY_STATUS_OK = 0,
    NOTIFY_STATUS_INVALID_NAME = 1,
    NOTIFY_STATUS_INVALID_TOKEN = 2,
    NOTIFY_STATUS_FAILED = 1000000,
};

/// [any-thread] Starts to count postings of `name` (reverse DNS, valid as a D-Bus interface name)
/// for a new token, owned by the caller until notify_cancel. Every posting sent after the return is
/// seen by the token. NOTIFY_STATUS_INVALID_NAME; NOTIFY_STATUS_INVALID_TOKEN: `token` is null;
/// NOTIFY_STATUS_FAILED: no bus, or 4,096 tokens are out. `*token` is set only on success.
[[nodiscard]] std::uint32_t notify_register_check(const char* name, int* token);
/// [any-thread] Sets `*check` to 1 and takes one posting off the token's count when there is one
/// unseen, else to 0. Postings are never merged: n postings give n checks of 1. Takes no lock.
/// NOTIFY_STATUS_INVALID_TOKEN: unknown, or `check` null; `*check` is left alone.
std::uint32_t notify_check(int token, int* check);
/// [any-thread] Ends the token. NOTIFY_STATUS_INVALID_TOKEN: unknown.
std::uint32_t notify_cancel(int token);
/// [any-thread] Posts `name` to every process of the session, this one included; it has left this
/// process on return. NOTIFY_STATUS_INVALID_NAME; NOTIFY_STATUS_FAILED: no bus.
std::uint32_t notify_post(const char* name);
