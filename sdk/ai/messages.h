// SPDX-License-Identifier: MIT
// Message records of the document host, beyond those of the plug-in manager. The host owns all
// records; they are valid until the entry point returns.
#pragma once

#include "ai/types.h"
#include "sp/messages.h"

constexpr const char* kAIDocumentOpenedNotifier = "AI Document Opened Notifier";
constexpr const char* kAIDocumentChangedNotifier = "AI Document Changed Notifier";
constexpr const char* kAIApplicationStartedNotifier = "AI Application Started Notifier";

/// "AI Notifier"
struct AINotifierMessage {
    SPMessageData d;
    AINotifierHandle notifier = nullptr; ///< owned by the host, as AddNotifier gave it
    const char* type = nullptr;          ///< the type that fired; owned by the host
    void* notifyData = nullptr;          ///< depends on the type; null for all types above
};
/// "AI Timer"
struct AITimerMessage {
    SPMessageData d;
    AITimerHandle timer = nullptr; ///< owned by the host, as AddTimer gave it
};
/// "AI Menu"
struct AIMenuMessage {
    SPMessageData d;
    AIMenuItemHandle menuItem = nullptr; ///< owned by the host, as AddMenuItem gave it
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

static_assert(offsetof(AINotifierMessage, notifier) == sizeof(SPMessageData));
static_assert(offsetof(AINotifierMessage, type) == sizeof(SPMessageData) + sizeof(void*));
static_assert(offsetof(AINotifierMessage, notifyData) == sizeof(SPMessageData) + 2 * sizeof(void*));
static_assert(areMessageRecords<3, AINotifierMessage>);
static_assert(areMessageRecords<1, AITimerMessage, AIMenuMessage>);
static_assert(areMessageRecords<0, DoActionMessage, AIFilterMessage, AIPluginGroupMessage,
                                AIFileFormatMessage, AIUpdateFileFormatMessage, AIToolMessage,
                                AILiveEffectEditParamMessage, AILiveEffectGoMessage,
                                AILiveEffectInterpParamMessage, AILiveEffectInputTypeMessage,
                                AILiveEffectConvertColorMessage, AILiveEffectScaleParamMessage,
                                AILiveEffectAdjustColorsMessage, AILiveEffectHandleMergeMessage,
                                AIClipboardMessage, WorkspaceMessage>);
