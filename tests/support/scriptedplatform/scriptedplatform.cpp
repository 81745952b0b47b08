// SPDX-License-Identifier: MIT
// The script that the services read, and its short forms.
#include "tests/support/scriptedplatform/scriptedplatform.h"

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
