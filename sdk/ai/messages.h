// SPDX-License-Identifier: MIT
// Message records of the document host, beyond those of the plug-in manager.
#pragma once

#include "ai/types.h"
#include "sp/messages.h"

constexpr const char* kAIDocumentOpenedNotifier = "AI Document Opened Notifier";
constexpr const char* kAIDocumentChangedNotifier = "AI Document Changed Notifier";
constexpr const char* kAIApplicationStartedNotifier = "AI Application Started Notifier";

/// "AI Notifier"
struct AINotifierMessage {
    SPMessageData d;
    AINotifierHandle notifier = nullptr;
    const char* type = nullptr; ///< the type that fired
    void* notifyData = nullptr; ///< depends on the type; null for all types above
};
/// "AI Timer"
struct AITimerMessage {
    SPMessageData d;
    AITimerHandle timer = nullptr;
};
/// "AI Menu"
struct AIMenuMessage {
    SPMessageData d;
    AIMenuItemHandle menuItem = nullptr;
};
/// "Action Manager"
struct DoActionMessage {
    SPMessageData d;
};
/// "AI Filter"
struct AIFilterMessage {
    SPMessageData d;
};
/// "AI Plugin Group"
struct AIPluginGroupMessage {
    SPMessageData d;
};
/// "AI File Format"
struct AIFileFormatMessage {
    SPMessageData d;
};
struct AIUpdateFileFormatMessage {
    SPMessageData d;
};
/// "AI Tool"
struct AIToolMessage {
    SPMessageData d;
};
/// "AI Live Effect": one record per selector.
struct AILiveEffectEditParamMessage {
    SPMessageData d;
};
struct AILiveEffectGoMessage {
    SPMessageData d;
};
struct AILiveEffectInterpParamMessage {
    SPMessageData d;
};
struct AILiveEffectInputTypeMessage {
    SPMessageData d;
};
struct AILiveEffectConvertColorMessage {
    SPMessageData d;
};
struct AILiveEffectScaleParamMessage {
    SPMessageData d;
};
struct AILiveEffectAdjustColorsMessage {
    SPMessageData d;
};
struct AILiveEffectHandleMergeMessage {
    SPMessageData d;
};
/// "AI Clipboard"
struct AIClipboardMessage {
    SPMessageData d;
};
/// "Workspace Manager"
struct WorkspaceMessage {
    SPMessageData d;
};
