// SPDX-License-Identifier: MIT
// Which operation a message belongs to: a hash table over (caller, selector), made at compile time,
// since every message of the host passes here.
#include "AppContext.h"
#include "Plugin.h"

#include <array>
#include <bit>
#include <string_view>

namespace {

using Operation = AIErr (*)(Plugin&, void*);

struct Route {
    std::string_view caller;
    std::string_view selector;
    Operation operation;
};

template <typename Message>
Message* recordOf(AIErr (Plugin::*)(Message*), void* record) {
    return static_cast<Message*>(record);
}

template <auto operation>
AIErr call(Plugin& plugin, void* record) {
    return (plugin.*operation)(recordOf(operation, record));
}

AIErr doNothing(Plugin& /*plugin*/, void* /*record*/) {
    return kNoErr;
}

AIErr purge(Plugin& plugin, void* /*record*/) {
    return plugin.Purge() ? kPurgedErr : kNoErr;
}

constexpr std::array routes{
    Route{"SP Access", "Unload", call<&Plugin::UnloadPlugin>},
    Route{"SP Access", "Reload", call<&Plugin::ReloadPlugin>},
    Route{"SP Interface", "About", call<&Plugin::About>},
    Route{"SP Interface", "Startup", doNothing},
    Route{"SP Cache", "Plug-in Purge", purge},
    Route{"SP Properties", "Acquire", call<&Plugin::AcquireProperty>},
    Route{"SP Properties", "Release", call<&Plugin::ReleaseProperty>},
    Route{"Action Manager", "Do Action", call<&Plugin::GoAction>},
    Route{"AI Menu", "AI Go", call<&Plugin::GoMenuItem>},
    Route{"AI Menu", "AI Update", call<&Plugin::UpdateMenuItem>},
    Route{"AI Filter", "AI Get Parameters", call<&Plugin::GetFilterParameters>},
    Route{"AI Filter", "AI Go", call<&Plugin::GoFilter>},
    Route{"AI Plugin Group", "AI Notify Edits", call<&Plugin::PluginGroupNotify>},
    Route{"AI Plugin Group", "AI Update", call<&Plugin::PluginGroupUpdate>},
    Route{"AI File Format", "AI Get Parameters", call<&Plugin::GetFileFormatParameters>},
    Route{"AI File Format", "AI Go", call<&Plugin::GoFileFormat>},
    Route{"AI File Format", "AI Check", call<&Plugin::CheckFileFormat>},
    Route{"AI File Format", "AI Update AI140", call<&Plugin::FileFormatUpdate>},
    Route{"AI File Format", "Do Action", call<&Plugin::SetFileFormatParameters>},
    Route{"AI Tool", "AI Edit Options", call<&Plugin::EditTool>},
    Route{"AI Tool", "AI Track Cursor", call<&Plugin::TrackToolCursor>},
    Route{"AI Tool", "AI Mouse Down", call<&Plugin::ToolMouseDown>},
    Route{"AI Tool", "AI Mouse Drag", call<&Plugin::ToolMouseDrag>},
    Route{"AI Tool", "AI Mouse Up", call<&Plugin::ToolMouseUp>},
    Route{"AI Tool", "AI Select", call<&Plugin::SelectTool>},
    Route{"AI Tool", "AI Deselect", call<&Plugin::DeselectTool>},
    Route{"AI Tool", "AI Reselect", call<&Plugin::ReselectTool>},
    Route{"AI Tool", "AI Decrease Diameter", call<&Plugin::DecreaseDiameter>},
    Route{"AI Tool", "AI Increase Diameter", call<&Plugin::IncreaseDiameter>},
    Route{"AI Live Effect", "AI Live Effect Edit Parameters",
          call<&Plugin::EditLiveEffectParameters>},
    Route{"AI Live Effect", "AI Live Effect Go Live", call<&Plugin::GoLiveEffect>},
    Route{"AI Live Effect", "AI Live Effect Interpolate Parameters",
          call<&Plugin::LiveEffectInterpolate>},
    Route{"AI Live Effect", "AI Live Effect Input Type", call<&Plugin::LiveEffectGetInputType>},
    Route{"AI Live Effect", "AI Live Effect Scale Parameters",
          call<&Plugin::LiveEffectScaleParameters>},
    Route{"AI Live Effect", "AI Live Effect Convert Color Space",
          call<&Plugin::LiveEffectConvertColorSpace>},
    Route{"AI Live Effect", "AI Live Effect Adjust Colors", call<&Plugin::LiveEffectAdjustColors>},
    Route{"AI Live Effect", "AI Live Effect Handle Merge", call<&Plugin::LiveEffectHandleMerge>},
    Route{"AI Timer", "AI Go", call<&Plugin::GoTimer>},
    Route{"AI Clipboard", "AI Go", call<&Plugin::GoClipboard>},
    Route{"AI Clipboard", "AI Can Copy", call<&Plugin::CanCopyClipboard>},
    Route{"AI Clipboard", "AI Clone", call<&Plugin::CloneClipboard>},
    Route{"AI Clipboard", "AI Dispose", call<&Plugin::DisposeClipboard>},
    // The host's own spelling. The word spelled correctly is not understood.
    Route{"Workspace Manager", "Write Woskspace", call<&Plugin::WorkspaceWrite>},
    Route{"Workspace Manager", "Restore Woskspace", call<&Plugin::WorkspaceRestore>},
    Route{"Workspace Manager", "Default Woskspace", call<&Plugin::WorkspaceDefault>},
};

constexpr std::size_t slotCount = std::bit_ceil(routes.size() * 4);
constexpr std::size_t noRoute = routes.size();

// FNV-1a over both texts.
constexpr std::size_t slotOf(std::string_view caller, std::string_view selector) {
    std::uint32_t hash = 2166136261U;
    for (const std::string_view text : {caller, selector}) {
        for (const char character : text) {
            hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
        }
    }
    return hash % slotCount;
}

constexpr auto slots = [] {
    std::array<std::uint8_t, slotCount> table{};
    table.fill(noRoute);
    for (std::size_t i = 0; i < routes.size(); ++i) {
        std::size_t slot = slotOf(routes[i].caller, routes[i].selector);
        while (table[slot] != noRoute) {
            slot = (slot + 1) % slotCount;
        }
        table[slot] = static_cast<std::uint8_t>(i);
    }
    return table;
}();

Operation findOperation(std::string_view caller, std::string_view selector) {
    for (std::size_t slot = slotOf(caller, selector); slots[slot] != noRoute;
         slot = (slot + 1) % slotCount) {
        const Route& route = routes[slots[slot]];
        if (route.selector == selector && route.caller == caller) {
            return route.operation;
        }
    }
    return nullptr;
}

} // namespace

AIErr Plugin::Message(const char* caller, const char* selector, void* message) {
    AcquireOptionalSuites();
    if (std::string_view(caller) == "AI Notifier") {
        return dispatchNotifier(selector, static_cast<AINotifierMessage*>(message));
    }
    const Operation operation = findOperation(caller, selector);
    return operation != nullptr ? operation(*this, message) : kUnhandledMsgErr;
}

AIErr Plugin::dispatchNotifier(const char* selector, AINotifierMessage* message) {
    const AppContext context(message->d.self);
    if (std::string_view(message->type) == kAIApplicationStartedNotifier) {
        const AIErr error = PostStartupPlugin();
        if (error != kNoErr && error != kUnhandledMsgErr) {
            return error;
        }
    }
    return std::string_view(selector) == "AI Notify" ? Notify(message) : kUnhandledMsgErr;
}
