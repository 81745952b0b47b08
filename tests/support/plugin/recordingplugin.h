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

// The messages that have an operation.
#define GLYPHORA_MESSAGES(X)                                                                       \
    X("SP Access", "Unload", UnloadPlugin)                                                         \
    X("SP Access", "Reload", ReloadPlugin)                                                         \
    X("SP Interface", "About", About)                                                              \
    X("SP Properties", "Acquire", AcquireProperty)                                                 \
    X("SP Properties", "Release", ReleaseProperty)                                                 \
    X("Action Manager", "Do Action", GoAction)                                                     \
    X("AI Menu", "AI Go", GoMenuItem)                                                              \
    X("AI Menu", "AI Update", UpdateMenuItem)                                                      \
    X("AI Filter", "AI Get Parameters", GetFilterParameters)                                       \
    X("AI Filter", "AI Go", GoFilter)                                                              \
    X("AI Plugin Group", "AI Notify Edits", PluginGroupNotify)                                     \
    X("AI Plugin Group", "AI Update", PluginGroupUpdate)                                           \
    X("AI File Format", "AI Get Parameters", GetFileFormatParameters)                              \
    X("AI File Format", "AI Go", GoFileFormat)                                                     \
    X("AI File Format", "AI Check", CheckFileFormat)                                               \
    X("AI File Format", "AI Update AI140", FileFormatUpdate)                                       \
    X("AI File Format", "Do Action", SetFileFormatParameters)                                      \
    X("AI Tool", "AI Edit Options", EditTool)                                                      \
    X("AI Tool", "AI Track Cursor", TrackToolCursor)                                               \
    X("AI Tool", "AI Mouse Down", ToolMouseDown)                                                   \
    X("AI Tool", "AI Mouse Drag", ToolMouseDrag)                                                   \
    X("AI Tool", "AI Mouse Up", ToolMouseUp)                                                       \
    X("AI Tool", "AI Select", SelectTool)                                                          \
    X("AI Tool", "AI Deselect", DeselectTool)                                                      \
    X("AI Tool", "AI Reselect", ReselectTool)                                                      \
    X("AI Tool", "AI Decrease Diameter", DecreaseDiameter)                                         \
    X("AI Tool", "AI Increase Diameter", IncreaseDiameter)                                         \
    X("AI Live Effect", "AI Live Effect Edit Parameters", EditLiveEffectParameters)                \
    X("AI Live Effect", "AI Live Effect Go Live", GoLiveEffect)                                    \
    X("AI Live Effect", "AI Live Effect Interpolate Parameters", LiveEffectInterpolate)            \
    X("AI Live Effect", "AI Live Effect Input Type", LiveEffectGetInputType)                       \
    X("AI Live Effect", "AI Live Effect Scale Parameters", LiveEffectScaleParameters)              \
    X("AI Live Effect", "AI Live Effect Convert Color Space", LiveEffectConvertColorSpace)         \
    X("AI Live Effect", "AI Live Effect Adjust Colors", LiveEffectAdjustColors)                    \
    X("AI Live Effect", "AI Live Effect Handle Merge", LiveEffectHandleMerge)                      \
    X("AI Timer", "AI Go", GoTimer)                                                                \
    X("AI Clipboard", "AI Go", GoClipboard)                                                        \
    X("AI Clipboard", "AI Can Copy", CanCopyClipboard)                                             \
    X("AI Clipboard", "AI Clone", CloneClipboard)                                                  \
    X("AI Clipboard", "AI Dispose", DisposeClipboard)                                              \
    X("Workspace Manager", "Write Woskspace", WorkspaceWrite)                                      \
    X("Workspace Manager", "Restore Woskspace", WorkspaceRestore)                                  \
    X("Workspace Manager", "Default Woskspace", WorkspaceDefault)

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
#define RECORD(caller, selector, operation)                                                        \
    AIErr operation(decltype(messageOf(&Plugin::operation)) message) override {                    \
        calls.emplace_back(#operation, message);                                                   \
        return result;                                                                             \
    }
    // NOLINTEND(bugprone-macro-parentheses)
    GLYPHORA_MESSAGES(RECORD)
    RECORD(, , ShutdownPlugin)
    RECORD(, , Notify)
#undef RECORD
};
