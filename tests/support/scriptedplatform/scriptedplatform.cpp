// SPDX-License-Identifier: MIT
// The script that the services read, and its short forms; notifications inside one process, and
// virtual time.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include "platform/application.h"
#include "platform/notify.h"
#include "platform/timing.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <utility>

namespace scripted {

namespace {

std::atomic<Platform*> currentPlatform = nullptr;

} // namespace

Platform::Platform() {
    Platform* none = nullptr;
    if (!currentPlatform.compare_exchange_strong(none, this)) {
        throw std::logic_error("one scripted platform at a time");
    }
}

Platform::~Platform() {
    currentPlatform = nullptr;
}

Platform* Platform::current() {
    return currentPlatform;
}

std::string SentEvent::directText() const {
    for (const auto& [keyword, parameter] : parameters) {
        if (keyword == keyDirectObject && parameter.type == typeChar) {
            return parameter.bytes;
        }
    }
    return {};
}

Answer textAnswer(std::string text) {
    Answer answer;
    answer.parameters.emplace_back(keyDirectObject, Parameter{typeChar, std::move(text)});
    return answer;
}

Answer failedAnswer(OSStatus status) {
    Answer answer;
    answer.status = status;
    return answer;
}

bool Platform::hasHandler(AEEventClass eventClass, AEEventID eventID) const {
    return std::any_of(handlers.begin(), handlers.end(), [&](const Handler& handler) {
        return handler.eventClass == eventClass && handler.eventID == eventID;
    });
}

void Platform::post(const std::string& name) {
    const std::lock_guard locked(notificationLock);
    for (auto& [number, token] : tokens) {
        if (token.name == name) {
            ++token.unseen;
            token.idleChecks = 0;
        }
    }
}

void Platform::awaitAllNoticed() {
    std::unique_lock locked(notificationLock);
    noticed.wait(locked, [this] {
        return std::all_of(tokens.begin(), tokens.end(),
                           [](const auto& entry) { return entry.second.idleChecks > 0; });
    });
}

} // namespace scripted

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

namespace {

constexpr double ticksPerSecond = 60;

void (*beforeDelay)() = nullptr;

} // namespace

void PLBeforeDelay(void (*routine)()) {
    beforeDelay = routine;
}

void Delay(std::uint32_t ticks, std::uint32_t* /*finalTicks*/) {
    if (beforeDelay != nullptr) {
        beforeDelay();
    }
    Platform::current()->delays.push_back(ticks);
    Platform::current()->now += ticks / ticksPerSecond;
}

double CFAbsoluteTimeGetCurrent() {
    return Platform::current()->now += Platform::current()->clockStep;
}
