// SPDX-License-Identifier: MIT
// Start-up, shut-down and reload of the plug-in, and who is told of a notification.
#include "GlyphoraPlugin.h"

#include "suitepointers.h"

#include <cstdio>
#include <exception>
#include <new>
#include <string_view>
#include <utility>

namespace {

constexpr const char* pluginName = "Glyphora for Illustrator CS4";
constexpr const char* notifierName = "GlyphoraPlugin";
constexpr const char* timerName = "CloseTheDoc";
constexpr std::int32_t timerPeriod = 300; ///< ticks of 1/60 s

void throwOnError(AIErr error) {
    if (error != kNoErr) {
        throw std::int32_t{error}; // the host guards its calls; nothing here catches it
    }
}

} // namespace

std::unique_ptr<Plugin> AllocatePlugin(SPPluginRef pluginRef) noexcept {
    return std::unique_ptr<Plugin>(new GlyphoraPlugin(pluginRef));
}

// The object's dispatch table may lead into unmapped code: nothing may look at it before the
// constructor has replaced it, not even a sanitizer.
__attribute__((no_sanitize("vptr"))) void FixupReload(Plugin* plugin) noexcept {
    GlyphoraPlugin::FixupVTable(plugin);
}

__attribute__((no_sanitize("vptr"))) void GlyphoraPlugin::FixupVTable(Plugin* plugin) noexcept {
    auto* const self = static_cast<GlyphoraPlugin*>(plugin);
    State state(std::move(self->state_));
    CheckState check(std::move(self->check_));
    // The old object's storage is used again without its destructor: it owns nothing any more.
    ::new (static_cast<void*>(self)) GlyphoraPlugin(std::move(state), std::move(check));
}

GlyphoraPlugin::GlyphoraPlugin(SPPluginRef pluginRef) noexcept : Plugin(pluginRef) {
    SetPluginName(pluginName);
}

GlyphoraPlugin::GlyphoraPlugin(State&& state, CheckState&& check) noexcept
    : Plugin(std::move(state)), check_(std::move(check)) {}

GlyphoraPlugin::~GlyphoraPlugin() {
    if (gPlugin == this) { // a failed start-up leaves it set
        gPlugin = nullptr;
    }
}

AIErr GlyphoraPlugin::StartupPlugin(SPInterfaceMessage* message) {
    if (const AIErr error = Plugin::StartupPlugin(message); error != kNoErr) {
        return error;
    }
    const SPPluginRef self = GetPluginRef();
    // The check needs the first alone, but only the third one's result is looked at.
    sAINotifier->AddNotifier(self, notifierName, kAIDocumentOpenedNotifier,
                             &check_.documentOpenedNotifier);
    sAINotifier->AddNotifier(self, notifierName, kAIApplicationStartedNotifier,
                             &check_.applicationStartedNotifier);
    throwOnError(sAINotifier->AddNotifier(self, notifierName, kAIDocumentChangedNotifier,
                                          &check_.documentChangedNotifier));
    throwOnError(sAITimer->AddTimer(self, timerName, timerPeriod, &check_.closeTheDocTimer));
    sAITimer->SetTimerActive(check_.closeTheDocTimer, 0);
    return kNoErr;
}

AIErr GlyphoraPlugin::ShutdownPlugin(SPInterfaceMessage* message) {
    if (check_.auxiliary != nullptr) {
        check_.auxiliary->ShutdownPlugin(message);
        check_.auxiliary.reset();
    }
    return Plugin::ShutdownPlugin(message);
}

AIErr GlyphoraPlugin::ReloadPlugin(SPAccessMessage* message) {
    const AIErr error = Plugin::ReloadPlugin(message);
    if (HasSuites()) {
        restoreNotifiers();
        restoreTimer();
    }
    return error;
}

void GlyphoraPlugin::restoreNotifiers() {
    std::int32_t count = 0;
    sAINotifier->CountNotifiers(&count);
    for (std::int32_t i = 0; i < count; ++i) {
        AINotifierHandle notifier = nullptr;
        SPPluginRef owner = nullptr;
        const char* type = nullptr;
        if (sAINotifier->GetNthNotifier(i, &notifier) != kNoErr ||
            sAINotifier->GetNotifierPlugin(notifier, &owner) != kNoErr || owner != GetPluginRef() ||
            sAINotifier->GetNotifierType(notifier, &type) != kNoErr) {
            continue;
        }
        // The handle of changed documents is left as it was, on purpose.
        if (std::string_view(type) == kAIDocumentOpenedNotifier) {
            check_.documentOpenedNotifier = notifier;
        } else if (std::string_view(type) == kAIApplicationStartedNotifier) {
            check_.applicationStartedNotifier = notifier;
        }
    }
}

void GlyphoraPlugin::restoreTimer() {
    std::int32_t count = 0;
    sAITimer->CountTimers(&count);
    for (std::int32_t i = 0; i < count; ++i) {
        AITimerHandle timer = nullptr;
        SPPluginRef owner = nullptr;
        const char* name = nullptr;
        if (sAITimer->GetNthTimer(i, &timer) == kNoErr &&
            sAITimer->GetTimerPlugin(timer, &owner) == kNoErr && owner == GetPluginRef() &&
            sAITimer->GetTimerName(timer, &name) == kNoErr && std::string_view(name) == timerName) {
            check_.closeTheDocTimer = timer;
        }
    }
}

AIErr GlyphoraPlugin::SetGlobal(Plugin* plugin) {
    gPlugin = plugin;
    return kNoErr;
}

AIErr GlyphoraPlugin::Notify(AINotifierMessage* message) {
    if (message->notifier == check_.documentChangedNotifier) {
        std::puts("doc changed notifier");
        return kNoErr;
    }
    if (message->notifier == check_.applicationStartedNotifier) {
        return kNoErr;
    }
    if (message->notifier != check_.documentOpenedNotifier) {
        std::puts("other notifier");
        return kNoErr;
    }
    try {
        return checkFonts(message);
    } catch (const std::exception& failure) {
        std::printf("ERROR:%s\n", failure.what());
        throw;
    }
}

AIErr GlyphoraPlugin::Timer(AITimerMessage* /*message*/) {
    AIDocumentHandle document = nullptr;
    sAIDocument->GetDocument(&document);
    sAIDocumentList->Close(document);
    sAITimer->SetTimerActive(check_.closeTheDocTimer, 0);
    return kNoErr;
}
