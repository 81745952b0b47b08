// SPDX-License-Identifier: MIT
// The life of the plug-in's object: start-up, shut-down, unloading and reloading; its name, its
// lock and its about box.
#include "Plugin.h"

#include "suitepointers.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

Plugin* gPlugin = nullptr;

namespace {

constexpr std::int32_t aboutStrings = 16600;

std::time_t secondsSinceEpoch() {
    return std::time(nullptr);
}

} // namespace

std::time_t (*Plugin::clock)() = secondsSinceEpoch;

Plugin::Plugin(SPPluginRef pluginRef) noexcept {
    state_.pluginRef = pluginRef;
    SetPluginName("Plugin");
}

Plugin::Plugin(State&& state) noexcept : state_(std::move(state)) {}

Plugin::~Plugin() = default;

void* Plugin::operator new(std::size_t size) noexcept {
    return ::operator new(size, std::nothrow);
}

void Plugin::operator delete(void* block) noexcept {
    if (block != nullptr) {
        ::operator delete(block);
    }
}

void Plugin::SetPluginName(const char* name) noexcept {
    state_.pluginName.fill('\0');
    std::memcpy(state_.pluginName.data(), name, strnlen(name, state_.pluginName.size()));
}

AIErr Plugin::LockPlugin(bool lock) {
    if (lock) {
        ++state_.lockCount;
        if (state_.lockCount == 1) {
            return sSPAccess->AcquirePlugin(state_.pluginRef, &state_.pluginAccess);
        }
        return kNoErr;
    }
    --state_.lockCount;
    if (state_.lockCount == 0) {
        return sSPAccess->ReleasePlugin(std::exchange(state_.pluginAccess, nullptr));
    }
    state_.lockCount = std::max(state_.lockCount, 0);
    return kNoErr;
}

AIErr Plugin::acquireSuites() noexcept {
    if (state_.suites == nullptr) {
        state_.suites.reset(new (std::nothrow) Suites);
        if (state_.suites == nullptr) {
            return kOutOfMemoryErr;
        }
    }
    // This holder is the only one, also when it failed half-way and must release the first half.
    Suites::fAcquiredCount = 1;
    const AIErr error = state_.suites->error();
    if (error != kNoErr) {
        state_.suites.reset();
    }
    return error;
}

AIErr Plugin::StartupPlugin(SPInterfaceMessage* /*message*/) {
    SetGlobal(this);
    if (const AIErr error = acquireSuites(); error != kNoErr) {
        return error;
    }
    const std::string name(state_.pluginName.data(),
                           strnlen(state_.pluginName.data(), state_.pluginName.size()));
    if (const AIErr error = sSPPlugins->SetPluginName(state_.pluginRef, name.c_str());
        error != kNoErr) {
        return error;
    }
    if (const AIErr error =
            sAINotifier->AddNotifier(state_.pluginRef, (name + " App Started Notifier").c_str(),
                                     kAIApplicationStartedNotifier, nullptr);
        error != kNoErr) {
        return error;
    }
    if (const AIErr error = AllocateSuiteTables(); error != kNoErr) {
        return error;
    }
    return FillSuiteTables();
}

AIErr Plugin::ShutdownPlugin(SPInterfaceMessage* /*message*/) {
    state_.suites.reset();
    SetGlobal(nullptr);
    return kNoErr;
}

AIErr Plugin::UnloadPlugin(SPAccessMessage* /*message*/) {
    EmptySuiteTables();
    SetGlobal(nullptr);
    state_.suites.reset();
    return kNoErr;
}

AIErr Plugin::ReloadPlugin(SPAccessMessage* /*message*/) {
    if (const AIErr error = acquireSuites(); error != kNoErr) {
        return error;
    }
    return FillSuiteTables();
}

std::int32_t Plugin::GetPluginName(char* buffer, std::int32_t length) const {
    const std::size_t limit = static_cast<std::size_t>(std::max(length, 0));
    const std::size_t size = strnlen(state_.pluginName.data(), state_.pluginName.size());
    std::memcpy(buffer, state_.pluginName.data(), std::min(size, limit));
    std::memset(buffer + std::min(size, limit), 0, limit - std::min(size, limit));
    if (size > limit) {
        buffer[limit] = '\0';
    }
    return static_cast<std::int32_t>(size);
}

AIErr Plugin::About(SPInterfaceMessage* /*message*/) {
    std::array<char, 256> title{};
    std::array<char, 256> text{};
    sADMBasic->GetIndexString(state_.pluginRef, aboutStrings, 1, title.data(), title.size());
    sADMBasic->GetIndexString(state_.pluginRef, aboutStrings, 2, text.data(), text.size());
    sADMBasic->AboutBox(state_.pluginRef, title.data(), text.data());
    return kNoErr;
}

AIErr Plugin::AcquireOptionalSuites() {
    if (state_.suites != nullptr) {
        state_.suites->acquire_Optional_Suites();
    }
    return kNoErr;
}

bool Plugin::IsReloadMsg(const char* caller, const char* selector) noexcept {
    return std::string_view(caller) == "SP Access" && std::string_view(selector) == "Reload";
}
