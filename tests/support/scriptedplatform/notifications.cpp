// SPDX-License-Identifier: MIT
// Change notifications inside one process.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include "platform/notify.h"

using scripted::Platform;

std::uint32_t notify_register_check(const char* name, int* token) {
    Platform* const platform = Platform::current();
    const std::lock_guard locked(platform->notificationLock);
    if (platform->registerStatus != NOTIFY_STATUS_OK) {
        return platform->registerStatus;
    }
    platform->registered.emplace_back(name);
    *token = ++platform->lastToken;
    platform->tokens[*token].name = name;
    return NOTIFY_STATUS_OK;
}

std::uint32_t notify_check(int token, int* check) {
    Platform* const platform = Platform::current();
    const std::lock_guard locked(platform->notificationLock);
    const auto found = platform->tokens.find(token);
    if (found == platform->tokens.end()) {
        return NOTIFY_STATUS_INVALID_TOKEN;
    }
    scripted::Platform::Token& state = found->second;
    *check = state.unseen > 0 ? 1 : 0;
    if (state.unseen > 0) {
        --state.unseen;
    } else {
        ++state.idleChecks;
        platform->noticed.notify_all();
    }
    return NOTIFY_STATUS_OK;
}

std::uint32_t notify_cancel(int token) {
    Platform* const platform = Platform::current();
    const std::lock_guard locked(platform->notificationLock);
    platform->cancelled.push_back(token);
    return platform->tokens.erase(token) == 1 ? NOTIFY_STATUS_OK : NOTIFY_STATUS_INVALID_TOKEN;
}
