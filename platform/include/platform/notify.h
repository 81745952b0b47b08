// SPDX-License-Identifier: MIT
// Named, system-wide change notifications, polled by token.
//
// A posting is a broadcast signal on the session bus, counted per name as it arrives; a check
// compares two counters and may be made a thousand times a second. Any thread.
#pragma once

#include <cstdint>

enum : std::uint32_t {
    NOTIFY_STATUS_OK = 0,
    NOTIFY_STATUS_INVALID_NAME = 1,
    NOTIFY_STATUS_INVALID_TOKEN = 2,
    NOTIFY_STATUS_FAILED = 1000000,
};

/// Starts to count postings of `name` (reverse DNS, valid as a D-Bus interface name) for a new
/// token. NOTIFY_STATUS_FAILED: no bus. Every posting sent after the return is seen by the token.
std::uint32_t notify_register_check(const char* name, int* token);
/// Sets `*check` to 1 and takes one posting off the token's count when there is one unseen, else to
/// 0. Postings are never merged: n postings give n checks of 1. NOTIFY_STATUS_INVALID_TOKEN:
/// unknown.
std::uint32_t notify_check(int token, int* check);
/// Ends the token. NOTIFY_STATUS_INVALID_TOKEN: unknown.
std::uint32_t notify_cancel(int token);
/// Posts `name` to every process of the session, this one included.
std::uint32_t notify_post(const char* name);
