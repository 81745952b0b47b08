// SPDX-License-Identifier: MIT
// A plug-in that notes which of its operations are called, with what.
#pragma once

#include "Plugin.h"
#include "suitepointers.h"
#include "tests/support/scriptedhost/scriptedhost.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

// The messages that have an operation, and what the base class answers to each.
#define GLYPHORA_MESSAGES(X)                                                                       \
    X("SP Access", "Unload", UnloadPlugin, kNoErr)                                                 \
    X("SP Access", "Reload", ReloadPlugin, kNoErr)                                                 \
    X("SP Interface", "About", About, kNoErr)                                                      \
    X("SP Properties", "Acquire", AcquireProperty, kUnhandledMsgErr)                               \
    X("SP Properties", "Release", ReleaseProperty, kUnhandledMsgErr)                               \
    X("Action Manager", "Do Action", GoAction, kNoErr)                                             \
    X("AI Menu", "AI Go", GoMenuItem, kUnhandledMsgErr)                                            \
    X("AI Menu", "AI Update", UpdateMenuItem, kUnhandledMsgErr)                                    \
    X("AI Filter", "AI Get Parameters", GetFilterParameters, kUnhandledMsgErr)                     \
    X("AI Filter", "AI Go", GoFilter, kUnhandledMsgErr)                                            \
    X("AI Plugin Group", "AI Notify Edits", PluginGroupNotify, kUnhandledMsgErr)                   \
    X("AI Plugin Group", "AI Update", PluginGroupUpdate, kUnhandledMsgErr)                         \
    X("AI File Format", "AI Get Parameters", GetFileFormatParameters, kUnhandledMsgErr)            \
    X("AI File Format", "AI Go", GoFileFormat, kUnhandledMsgErr)                                   \
    X("AI File Format", "AI Check", CheckFileFormat, kUnhandledMsgErr)                             \
    X("AI File Format", "AI Update AI140", FileFormatUpdate, kUnhandledMsgErr)                     \
    X("AI File Format", "Do Action", SetFileFormatParameters, kUnhandledMsgErr)                    \
    X("AI Tool", "AI Edit Options", EditTool, kUnhandledMsgErr)                                    \
    X("AI Tool", "AI Track Cursor", TrackToolCursor, kUnhandledMsgErr)                             \
    X("AI Tool", "AI Mouse Down", ToolMouseDown, kUnhandledMsgErr)                                 \
    X("AI Tool", "AI Mouse Drag", ToolMouseDrag, kUnhandledMsgErr)                                 \
    X("AI Tool", "AI Mouse Up", ToolMouseUp, kUnhandledMsgErr)                                     \
    X("AI Tool", "AI Select", SelectTool, kUnhandledMsgErr)                                        \
    X("AI Tool", "AI Deselect", DeselectTool, kUnhandledMsgErr)                                    \
    X("AI Tool", "AI Reselect", ReselectTool, kNoErr)                                              \
    X("AI Tool", "AI Decrease Diameter", DecreaseDiameter, kNoErr)                                 \
    X("AI Tool", "AI Increase Diameter", IncreaseDiameter, kNoErr)                                 \
    X("AI Live Effect", "AI Live Effect Edit Parameters", EditLiveEffectParameters,                \
      kUnhandledMsgErr)                                                                            \
    X("AI Live Effect", "AI Live Effect Go Live", GoLiveEffect, kUnhandledMsgErr)                  \
    X("AI Live Effect", "AI Live Effect Interpolate Parameters", LiveEffectInterpolate,            \
      kUnhandledMsgErr)                                                                            \
    X("AI Live Effect", "AI Live Effect Input Type", LiveEffectGetInputType, kUnhandledMsgErr)     \
    X("AI Live Effect", "AI Live Effect Scale Parameters", LiveEffectScaleParameters,              \
      kUnhandledMsgErr)                                                                            \
    X("AI Live Effect", "AI Live Effect Convert Color Space", LiveEffectConvertColorSpace,         \
      kUnhandledMsgErr)                                                                            \
    X("AI Live Effect", "AI Live Effect Adjust Colors", LiveEffectAdjustColors, kUnhandledMsgErr)  \
    X("AI Live Effect", "AI Live Effect Handle Merge", LiveEffectHandleMerge, kUnhandledMsgErr)    \
    X("AI Timer", "AI Go", GoTimer, kUnhandledMsgErr)                                              \
    X("AI Clipboard", "AI Go", GoClipboard, kUnhandledMsgErr)                                      \
    X("AI Clipboard", "AI Can Copy", CanCopyClipboard, kUnhandledMsgErr)                           \
    X("AI Clipboard", "AI Clone", CloneClipboard, kUnhandledMsgErr)                                \
    X("AI Clipboard", "AI Dispose", DisposeClipboard, kUnhandledMsgErr)                            \
    X("Workspace Manager", "Write Woskspace", WorkspaceWrite, kUnhandledMsgErr)                    \
    X("Workspace Manager", "Restore Woskspace", WorkspaceRestore, kUnhandledMsgErr)                \
    X("Workspace Manager", "Default Woskspace", WorkspaceDefault, kUnhandledMsgErr)

/// Only for its type: the message that an operation takes.
template <typename Message>
Message* messageOf(AIErr (Plugin::*operation)(Message*));

class RecordingPlugin : public Plugin {
public:
    explicit RecordingPlugin(scripted::Host& host) : Plugin(&host.plugin) {
        sSPBasic = host.basic();
    }
    ~RecordingPlugin() override { *alive = false; }

    /// As start-up does it.
    void acquire() {
        state_.suites = std::make_unique<Suites>();
        Suites::fAcquiredCount = 1;
    }
    using Plugin::SetPluginName;

    std::vector<std::pair<std::string, void*>> calls;
    AIErr result = kNoErr;
    AIErr postStartupResult = kNoErr;
    bool purges = false;
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);

    AIErr PostStartupPlugin() override {
        calls.emplace_back("PostStartupPlugin", nullptr);
        return postStartupResult;
    }
    bool Purge() override {
        calls.emplace_back("Purge", nullptr);
        return purges;
    }
    void ReportError(AIErr error, const char* caller, const char* selector,
                     void* message) override {
        calls.emplace_back("ReportError " + std::to_string(error) + " " + caller + " " + selector,
                           message);
    }

// NOLINTBEGIN(bugprone-macro-parentheses): types and names take none
#define RECORD(caller, selector, operation, baseAnswer)                                            \
    AIErr operation(decltype(messageOf(&Plugin::operation)) message) override {                    \
        calls.emplace_back(#operation, message);                                                   \
        return result;                                                                             \
    }
    // NOLINTEND(bugprone-macro-parentheses)
    GLYPHORA_MESSAGES(RECORD)
    RECORD(, , ShutdownPlugin, )
    RECORD(, , Notify, )
#undef RECORD
};
