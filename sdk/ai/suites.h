// SPDX-License-Identifier: MIT
// Suites of the document host: notifiers, timers, menus, documents, art, fonts.
// Besides what is said of it, every call answers kBadParameterErr for a null or unknown handle, a
// null result pointer or text, an index (from 0) out of range, or a buffer of less than one byte;
// kWrongThreadErr off the main thread; and kNotRunningErr while the plug-in handles no message.
// Texts are UTF-8; the host copies those that it is given. Handles that a call gives out are owned
// by the host.
#pragma once

#include "ai/types.h"
#include "ate/types.h"

#include <cstddef>

/// "AI Notifier Suite" 1002
struct AINotifierSuite {
    /// [main-thread] Registers `self` for notifications of `type`, under `name`, until the plug-in
    /// ends. `notifier` may be null if the handle is not wanted.
    AIErr (*AddNotifier)(SPPluginRef self, const char* name, const char* type,
                         AINotifierHandle* notifier);
    /// [main-thread] How many notifiers all plug-ins have registered.
    AIErr (*CountNotifiers)(std::int32_t* count);
    /// [main-thread] Notifier `n`, counted from 0 over those of all plug-ins.
    AIErr (*GetNthNotifier)(std::int32_t n, AINotifierHandle* notifier);
    /// [main-thread] The plug-in that registered a notifier.
    AIErr (*GetNotifierPlugin)(AINotifierHandle notifier, SPPluginRef* plugin);
    /// [main-thread] What a notifier waits for. The host owns `*type`; it is valid as long as the
    /// notifier.
    AIErr (*GetNotifierType)(AINotifierHandle notifier, const char** type);
};
static_assert(isSuiteTable<AINotifierSuite, 5>);

/// "AI Timer Suite" 1003
struct AITimerSuite {
    /// [main-thread] Registers an active timer that fires every `period` ticks (1/60 s) while the
    /// host is idle. kBadParameterErr: a period below 1.
    AIErr (*AddTimer)(SPPluginRef self, const char* name, std::int32_t period,
                      AITimerHandle* timer);
    /// [main-thread] Makes a timer fire from now on (`active` not 0), or stops it.
    AIErr (*SetTimerActive)(AITimerHandle timer, AIBoolean active);
    /// [main-thread] How many timers all plug-ins have registered.
    AIErr (*CountTimers)(std::int32_t* count);
    /// [main-thread] Timer `n`, counted from 0 over those of all plug-ins.
    AIErr (*GetNthTimer)(std::int32_t n, AITimerHandle* timer);
    /// [main-thread] The plug-in that registered a timer.
    AIErr (*GetTimerPlugin)(AITimerHandle timer, SPPluginRef* plugin);
    /// [main-thread] A timer's name. The host owns `*name`; it is valid as long as the timer.
    AIErr (*GetTimerName)(AITimerHandle timer, const char** name);
};
static_assert(isSuiteTable<AITimerSuite, 6>);

/// "AI Context Suite" 1004
struct AIAppContextSuite {
    /// [main-thread] Makes `plugin` the one that calls are made for, until `*context`, which the
    /// host owns, is popped. Contexts nest.
    AIErr (*PushAppContext)(SPPluginRef plugin, AIAppContextHandle* context);
    /// [main-thread] Ends a context. kBadParameterErr: it is not the innermost one, and stays.
    AIErr (*PopAppContext)(AIAppContextHandle context);
};
static_assert(isSuiteTable<AIAppContextSuite, 2>);

/// The group of the host's menu under which plug-ins put their about boxes.
constexpr const char* kAIAboutPluginsMenuGroup = "About Plug-ins";

/// "AI Menu Suite" 1009
struct AIMenuSuite {
    /// [main-thread] Adds an item named `name` with the text `itemText` to the group `groupName`.
    /// kBadParameterErr: there is no such group.
    AIErr (*AddMenuItem)(SPPluginRef self, const char* name, const char* groupName,
                         const char* itemText, std::int32_t options, AIMenuItemHandle* item);
    /// [main-thread] Makes a group that opens as a sub-menu of `parent`. kBadParameterErr: a group
    /// has this name already.
    AIErr (*AddMenuGroupAsSubMenu)(const char* name, std::int32_t options, AIMenuItemHandle parent,
                                   AIMenuGroup* group);
    /// [main-thread] How many groups the menus have.
    AIErr (*CountMenuGroups)(std::int32_t* count);
    /// [main-thread] Group `n`, counted from 0.
    AIErr (*GetNthMenuGroup)(std::int32_t n, AIMenuGroup* group);
    /// [main-thread] A group's name. The host owns `*name`; it is valid as long as the group.
    AIErr (*GetMenuGroupName)(AIMenuGroup group, const char** name);
};
static_assert(isSuiteTable<AIMenuSuite, 5>);

/// "AI Document Suite" 1011
struct AIDocumentSuite {
    /// [main-thread] The current document; null if none is open.
    AIErr (*GetDocument)(AIDocumentHandle* document);
};
static_assert(isSuiteTable<AIDocumentSuite, 1>);

/// "AI Document List Suite" 1006
struct AIDocumentListSuite {
    /// [main-thread] Closes the document without saving; its handles become invalid.
    AIErr (*Close)(AIDocumentHandle document);
};
static_assert(isSuiteTable<AIDocumentListSuite, 1>);

/// "AI Layer Suite" 1011: the layers of the current document, from first to last in the file.
struct AILayerSuite {
    /// [main-thread] The first layer; null if there is none, or no document.
    AIErr (*GetFirstLayer)(AILayerHandle* layer);
    /// [main-thread] The layer after `layer`; null after the last.
    AIErr (*GetNextLayer)(AILayerHandle layer, AILayerHandle* next);
};
static_assert(isSuiteTable<AILayerSuite, 2>);

/// "AI Art Suite" 1014. The first art of a layer is its top group.
struct AIArtSuite {
    /// [main-thread] The layer's top group.
    AIErr (*GetFirstArtOfLayer)(AILayerHandle layer, AIArtHandle* art);
    /// [main-thread] What kind of art it is, one of AIArtType.
    AIErr (*GetArtType)(AIArtHandle art, std::int16_t* type);
    /// [main-thread] The first child; null if there is none.
    AIErr (*GetArtFirstChild)(AIArtHandle art, AIArtHandle* child);
    /// [main-thread] The next child of the same parent; null after the last.
    AIErr (*GetArtSibling)(AIArtHandle art, AIArtHandle* sibling);
    /// [main-thread] The group that the art is in; null for a layer's top group.
    AIErr (*GetArtParent)(AIArtHandle art, AIArtHandle* parent);
};
static_assert(isSuiteTable<AIArtSuite, 5>);

/// "AI Text Frame Suite" 1001
struct AITextFrameSuite {
    /// [main-thread] The text engine's frame of a text-frame art object. The caller owns one count
    /// of `*frame`. kBadParameterErr: the art is of another type.
    AIErr (*GetATETextFrame)(AIArtHandle art, ATE::TextFrameRef* frame);
};
static_assert(isSuiteTable<AITextFrameSuite, 1>);

/// How a font is made, and whether the host has it.
struct AIFontStyleRecord {
    std::int32_t technology = 0; ///< 0: PostScript outlines, 1: TrueType outlines, else unknown
    AIBoolean isOpenType = 0;    ///< not for plain TrueType: that has no layout tables
    AIBoolean isPresent = 0;     ///< 0 if the document names the font and the host lacks it
};
static_assert(std::is_standard_layout_v<AIFontStyleRecord>);
static_assert(offsetof(AIFontStyleRecord, isOpenType) == sizeof(std::int32_t));
static_assert(offsetof(AIFontStyleRecord, isPresent) == sizeof(std::int32_t) + 1);
static_assert(sizeof(AIFontStyleRecord) == 2 * sizeof(std::int32_t));

enum : std::int32_t {
    kAIAnyFontTechnology = 101,
    kAINoFontScript = 0,
    kAIMatchAllFontNames = 1,
};

/// "AI Font Suite" 1003. The host owns what keys stand for; they are valid until it quits. The name
/// calls write at most `size` - 1 bytes and a terminating zero into the caller's buffer.
struct AIFontSuite {
    /// [main-thread] The key of a text-engine font; `font` stays the caller's.
    AIErr (*FontKeyFromFont)(ATE::FontRef font, AIFontKey* key);
    /// [main-thread] The text-engine font of a key. The caller owns one count of `*font`.
    AIErr (*FontFromFontKey)(AIFontKey key, ATE::FontRef* font);
    /// [main-thread] Writes the PostScript name.
    AIErr (*GetPostScriptFontName)(AIFontKey key, char* name, std::int32_t size);
    /// [main-thread] Writes the style name, such as "Bold Italic".
    AIErr (*GetFontStyleName)(AIFontKey key, char* name, std::int32_t size);
    /// [main-thread] Writes the family name.
    AIErr (*GetFontFamilyName)(AIFontKey key, char* name, std::int32_t size);
    /// [main-thread] Writes the name that people see in lists: the face's full name.
    AIErr (*GetUserFontName)(AIFontKey key, char* name, std::int32_t size);
    /// [main-thread] Fills the caller's `record`.
    AIErr (*GetFontStyle)(AIFontKey key, AIFontStyleRecord* record);
    /// [main-thread] Finds a present font by its PostScript name, else by its user-visible name,
    /// else by "family style". The numbers must be kAIAnyFontTechnology, kAINoFontScript
    /// and kAIMatchAllFontNames, else kBadParameterErr. kNoSuchFontErr: there is none.
    AIErr (*FindFont)(const char* name, std::int32_t technology, std::int32_t script,
                      std::int32_t match, AIFontKey* key);
    /// [main-thread] How many fonts the host has.
    AIErr (*CountFonts)(std::int32_t* count);
    /// [main-thread] Font `n` of those that the host has, from 0; the order stays while it runs.
    AIErr (*GetNthFont)(std::int32_t n, AIFontKey* key);
};
static_assert(isSuiteTable<AIFontSuite, 10>);

using AIUnicodeStringHandle = struct AIUnicodeString*;

/// "AI Unicode String Suite" 1006: immutable texts that the host keeps.
struct AIUnicodeStringSuite {
    /// [main-thread] Makes a text of `size` bytes of UTF-8, which the host copies; `bytes` may be
    /// null for none. The caller owns `*text` until Destroy. kBadParameterErr: not valid UTF-8.
    AIErr (*CreateFromUTF8)(const char* bytes, std::size_t size, AIUnicodeStringHandle* text);
    /// [main-thread] Destroys a text of CreateFromUTF8.
    AIErr (*Destroy)(AIUnicodeStringHandle text);
    /// [main-thread] The `*size` bytes of a text, and a zero behind them. The host owns `*bytes`;
    /// they are valid as long as the text.
    AIErr (*GetUTF8)(AIUnicodeStringHandle text, const char** bytes, std::size_t* size);
};
static_assert(isSuiteTable<AIUnicodeStringSuite, 3>);
