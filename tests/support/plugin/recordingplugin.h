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
#define RECORD(operation, Message)                                                                 \
    AIErr operation(Message* message) override {                                                   \
        return note(#operation, message);                                                          \
    }
    // NOLINTEND(bugprone-macro-parentheses)
    RECORD(ShutdownPlugin, SPInterfaceMessage)
    RECORD(UnloadPlugin, SPAccessMessage)
    RECORD(ReloadPlugin, SPAccessMessage)
    RECORD(AcquireProperty, SPPropertiesMessage)
    RECORD(ReleaseProperty, SPPropertiesMessage)
    RECORD(About, SPInterfaceMessage)
    RECORD(Notify, AINotifierMessage)
    RECORD(GoAction, DoActionMessage)
    RECORD(GoMenuItem, AIMenuMessage)
    RECORD(UpdateMenuItem, AIMenuMessage)
    RECORD(GetFilterParameters, AIFilterMessage)
    RECORD(GoFilter, AIFilterMessage)
    RECORD(PluginGroupNotify, AIPluginGroupMessage)
    RECORD(PluginGroupUpdate, AIPluginGroupMessage)
    RECORD(GetFileFormatParameters, AIFileFormatMessage)
    RECORD(GoFileFormat, AIFileFormatMessage)
    RECORD(CheckFileFormat, AIFileFormatMessage)
    RECORD(FileFormatUpdate, AIUpdateFileFormatMessage)
    RECORD(SetFileFormatParameters, DoActionMessage)
    RECORD(EditTool, AIToolMessage)
    RECORD(TrackToolCursor, AIToolMessage)
    RECORD(ToolMouseDown, AIToolMessage)
    RECORD(ToolMouseDrag, AIToolMessage)
    RECORD(ToolMouseUp, AIToolMessage)
    RECORD(SelectTool, AIToolMessage)
    RECORD(DeselectTool, AIToolMessage)
    RECORD(ReselectTool, AIToolMessage)
    RECORD(DecreaseDiameter, AIToolMessage)
    RECORD(IncreaseDiameter, AIToolMessage)
    RECORD(EditLiveEffectParameters, AILiveEffectEditParamMessage)
    RECORD(GoLiveEffect, AILiveEffectGoMessage)
    RECORD(LiveEffectInterpolate, AILiveEffectInterpParamMessage)
    RECORD(LiveEffectGetInputType, AILiveEffectInputTypeMessage)
    RECORD(LiveEffectConvertColorSpace, AILiveEffectConvertColorMessage)
    RECORD(LiveEffectScaleParameters, AILiveEffectScaleParamMessage)
    RECORD(LiveEffectAdjustColors, AILiveEffectAdjustColorsMessage)
    RECORD(LiveEffectHandleMerge, AILiveEffectHandleMergeMessage)
    RECORD(GoTimer, AITimerMessage)
    RECORD(GoClipboard, AIClipboardMessage)
    RECORD(CanCopyClipboard, AIClipboardMessage)
    RECORD(CloneClipboard, AIClipboardMessage)
    RECORD(DisposeClipboard, AIClipboardMessage)
    RECORD(WorkspaceWrite, WorkspaceMessage)
    RECORD(WorkspaceRestore, WorkspaceMessage)
    RECORD(WorkspaceDefault, WorkspaceMessage)
#undef RECORD

private:
    AIErr note(const char* operation, void* message) {
        calls.emplace_back(operation, message);
        return result;
    }
};
