// SPDX-License-Identifier: MIT
// Suites of the document host: notifiers, timers, menus, documents, art, fonts.
// Every call is [main-thread] and answers kBadParameterErr for a null or unknown handle, result
// pointer or text, for an index (from 0) out of range and a buffer of less than one byte;
// kWrongThreadErr off the main thread, and kNotRunningErr while the plug-in handles no message,
// beside what is said of it. Texts are UTF-8; texts that go in are copied by the host.
#pragma once

#include "ai/types.h"
#include "ate/types.h"

#include <cstddef>

/// "AI Notifier Suite" 1002
struct AINotifierSuite {
    /// Registers `self` for notifications of `type`, under `name`. `notifier` may be null when the
    /// handle is not wanted; the registration ends with the plug-in.
    AIErr (*AddNotifier)(SPPluginRef self, const char* name, const char* type,
                         AINotifierHandle* notifier);
    AIErr (*CountNotifiers)(std::int32_t* count);
    /// `n` counts from 0 over the notifiers of all plug-ins.
    AIErr (*GetNthNotifier)(std::int32_t n, AINotifierHandle* notifier);
    AIErr (*GetNotifierPlugin)(AINotifierHandle notifier, SPPluginRef* plugin);
    /// `*type` is owned by the host and valid as long as the notifier.
    AIErr (*GetNotifierType)(AINotifierHandle notifier, const char** type);
};

/// "AI Timer Suite" 1003
struct AITimerSuite {
    /// Registers an active timer that fires every `period` ticks (1/60 s) while the host is idle.
    /// kBadParameterErr: a period below 1.
    AIErr (*AddTimer)(SPPluginRef self, const char* name, std::int32_t period,
                      AITimerHandle* timer);
    AIErr (*SetTimerActive)(AITimerHandle timer, AIBoolean active);
    AIErr (*CountTimers)(std::int32_t* count);
    AIErr (*GetNthTimer)(std::int32_t n, AITimerHandle* timer);
    AIErr (*GetTimerPlugin)(AITimerHandle timer, SPPluginRef* plugin);
    /// `*name` is owned by the host and valid as long as the timer.
    AIErr (*GetTimerName)(AITimerHandle timer, const char** name);
};

/// "AI Context Suite" 1004
struct AIAppContextSuite {
    /// Makes `plugin` the one that calls are made for. `*context` is to be given back to
    /// PopAppContext; contexts nest.
    AIErr (*PushAppContext)(SPPluginRef plugin, AIAppContextHandle* context);
    /// kBadParameterErr: `context` is not the innermost one; nothing is popped.
    AIErr (*PopAppContext)(AIAppContextHandle context);
};

/// The group of the host's menu under which plug-ins put their about boxes.
constexpr const char* kAIAboutPluginsMenuGroup = "About Plug-ins";

/// "AI Menu Suite" 1009
struct AIMenuSuite {
    /// Adds an item named `name` with the text `itemText` to the group `groupName`.
    /// kBadParameterErr: no such group.
    AIErr (*AddMenuItem)(SPPluginRef self, const char* name, const char* groupName,
                         const char* itemText, std::int32_t options, AIMenuItemHandle* item);
    /// Makes a new group that opens as a sub-menu of `parent`. kBadParameterErr: a group has this
    /// name already.
    AIErr (*AddMenuGroupAsSubMenu)(const char* name, std::int32_t options, AIMenuItemHandle parent,
                                   AIMenuGroup* group);
    AIErr (*CountMenuGroups)(std::int32_t* count);
    AIErr (*GetNthMenuGroup)(std::int32_t n, AIMenuGroup* group);
    /// `*name` is owned by the host and valid as long as the group.
    AIErr (*GetMenuGroupName)(AIMenuGroup group, const char** name);
};

/// "AI Document Suite" 1011
struct AIDocumentSuite {
    /// The current document; null when none is open.
    AIErr (*GetDocument)(AIDocumentHandle* document);
};

/// "AI Document List Suite" 1006
struct AIDocumentListSuite {
    /// Closes the document without saving; its handles become invalid.
    AIErr (*Close)(AIDocumentHandle document);
};

/// "AI Layer Suite" 1011: the layers of the current document, from first to last in the file.
struct AILayerSuite {
    /// Null when there is no layer, or no document.
    AIErr (*GetFirstLayer)(AILayerHandle* layer);
    /// Null after the last.
    AIErr (*GetNextLayer)(AILayerHandle layer, AILayerHandle* next);
};

/// "AI Art Suite" 1014. The first art of a layer is its top group.
struct AIArtSuite {
    AIErr (*GetFirstArtOfLayer)(AILayerHandle layer, AIArtHandle* art);
    /// `*type` is one of AIArtType.
    AIErr (*GetArtType)(AIArtHandle art, std::int16_t* type);
    /// Null when the art has no children.
    AIErr (*GetArtFirstChild)(AIArtHandle art, AIArtHandle* child);
    /// Null after the last.
    AIErr (*GetArtSibling)(AIArtHandle art, AIArtHandle* sibling);
    /// Null for a layer's top group.
    AIErr (*GetArtParent)(AIArtHandle art, AIArtHandle* parent);
};

/// "AI Text Frame Suite" 1001
struct AITextFrameSuite {
    /// The text engine's frame of a text-frame art object. `*frame` counts one reference, the
    /// caller's. kBadParameterErr: the art is of another type.
    AIErr (*GetATETextFrame)(AIArtHandle art, ATE::TextFrameRef* frame);
};

/// How a font is made and whether the host has it.
struct AIFontStyleRecord {
    std::int32_t technology = 0; ///< 0: PostScript outlines, 1: TrueType outlines, else unknown
    AIBoolean isOpenType = 0;    ///< not for plain TrueType: that has no layout tables
    AIBoolean isPresent = 0;     ///< 0 when the document names the font and the host lacks it
};

enum : std::int32_t {
    kAIAnyFontTechnology = 101,
    kAINoFontScript = 0,
    kAIMatchAllFontNames = 1,
};

/// "AI Font Suite" 1003. Keys are valid until the host quits. The name calls write at most `size` -
/// 1 bytes and a terminating zero.
struct AIFontSuite {
    /// The key of a text-engine font, which keeps its references.
    AIErr (*FontKeyFromFont)(ATE::FontRef font, AIFontKey* key);
    /// The text-engine font of a key. `*font` counts one reference, the caller's.
    AIErr (*FontFromFontKey)(AIFontKey key, ATE::FontRef* font);
    AIErr (*GetPostScriptFontName)(AIFontKey key, char* name, std::int32_t size);
    AIErr (*GetFontStyleName)(AIFontKey key, char* name, std::int32_t size);
    AIErr (*GetFontFamilyName)(AIFontKey key, char* name, std::int32_t size);
    /// The name that people see in lists: the face's full name.
    AIErr (*GetUserFontName)(AIFontKey key, char* name, std::int32_t size);
    AIErr (*GetFontStyle)(AIFontKey key, AIFontStyleRecord* record);
    /// Finds a present font by its PostScript name, else by its user-visible name, else by "family
    /// style". Called with kAIAnyFontTechnology, kAINoFontScript and kAIMatchAllFontNames.
    /// kBadParameterErr: other numbers; kNoSuchFontErr: none.
    AIErr (*FindFont)(const char* name, std::int32_t technology, std::int32_t script,
                      std::int32_t match, AIFontKey* key);
    /// The fonts that the host has, in a stable order.
    AIErr (*CountFonts)(std::int32_t* count);
    AIErr (*GetNthFont)(std::int32_t n, AIFontKey* key);
};

using AIUnicodeStringHandle = struct AIUnicodeString*;

/// "AI Unicode String Suite" 1006: immutable texts kept by the host.
struct AIUnicodeStringSuite {
    /// Makes a text of `size` bytes of UTF-8; `bytes` may be null for none. kBadParameterErr: not
    /// valid UTF-8. `*text` is owned by the caller until Destroy.
    AIErr (*CreateFromUTF8)(const char* bytes, std::size_t size, AIUnicodeStringHandle* text);
    AIErr (*Destroy)(AIUnicodeStringHandle text);
    /// `*bytes` (`*size` of them, then a zero) is owned by the host and valid as long as the text.
    AIErr (*GetUTF8)(AIUnicodeStringHandle text, const char** bytes, std::size_t* size);
};
