// SPDX-License-Identifier: MIT
// The base class of the plug-in: turns the host's messages into calls of virtual operations, holds
// the host's suites from start-up to shut-down, and tells the user of errors.
#pragma once

#include "Suites.h"
#include "ai/messages.h"
#include "sp/suites.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>

/// The plug-in's object, created at the host's start-up message and destroyed at its shut-down
/// message. In between the host keeps it in the globals slot of its messages, even while the code
/// is unloaded. The operations return a host error code and throw nothing of their own; the message
/// that they take is the host's and valid during the call. [main-thread], one message at a time.
class Plugin {
public:
    explicit Plugin(SPPluginRef pluginRef) noexcept;
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    virtual ~Plugin();

    /// Returns null if there is no memory, and so does the `new` expression.
    [[nodiscard]] static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* block) noexcept;

    /// [main-thread, modal] Shows an error, unless it is quiet or was shown within the repeat
    /// interval.
    virtual void ReportError(AIErr error, const char* caller, const char* selector, void* message);
    /// Counts locks: the first keeps the plug-in in memory, the last unlock lets it go.
    virtual AIErr LockPlugin(bool lock);
    /// Acquires the suites, names the plug-in and registers for the application's start.
    virtual AIErr StartupPlugin(SPInterfaceMessage* message);
    virtual AIErr PostStartupPlugin() { return kNoErr; }
    virtual AIErr ShutdownPlugin(SPInterfaceMessage* message);
    /// Gives back everything that belongs to the code, which the host drops next.
    virtual AIErr UnloadPlugin(SPAccessMessage* message);
    /// Takes it again, once the code has been loaded anew.
    virtual AIErr ReloadPlugin(SPAccessMessage* message);
    virtual AIErr AcquireProperty(SPPropertiesMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr ReleaseProperty(SPPropertiesMessage* /*message*/) { return kUnhandledMsgErr; }
    /// Copies at most `length` bytes of the name into `buffer`, which holds one more: a longer name
    /// gets its terminating zero at `buffer[length]`. Returns the length of the whole name.
    virtual std::int32_t GetPluginName(char* buffer, std::int32_t length) const;
    /// [main-thread, modal] Shows the about box.
    virtual AIErr About(SPInterfaceMessage* message);
    /// Frees what the plug-in can do without. Returns true if there was something.
    virtual bool Purge() { return false; }
    /// Calls the operation that belongs to a pair of caller and selector. Returns '!MSG' if there
    /// is none.
    virtual AIErr Message(const char* caller, const char* selector, void* message);
    /// Makes `plugin`, which may be null, the one that gPlugin names.
    virtual AIErr SetGlobal(Plugin* /*plugin*/) { return kNoErr; }
    virtual AIErr AllocateSuiteTables() { return kNoErr; }
    virtual AIErr FillSuiteTables() { return kNoErr; }
    virtual AIErr EmptySuiteTables() { return kNoErr; }
    virtual AIErr AcquireOptionalSuites();
    virtual AIErr Notify(AINotifierMessage* /*message*/) { return kNoErr; }
    virtual AIErr GoAction(DoActionMessage* /*message*/) { return kNoErr; }
    virtual AIErr GoMenuItem(AIMenuMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr UpdateMenuItem(AIMenuMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr GetFilterParameters(AIFilterMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr GoFilter(AIFilterMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr PluginGroupNotify(AIPluginGroupMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr PluginGroupUpdate(AIPluginGroupMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr GetFileFormatParameters(AIFileFormatMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr GoFileFormat(AIFileFormatMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr CheckFileFormat(AIFileFormatMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr FileFormatUpdate(AIUpdateFileFormatMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr SetFileFormatParameters(DoActionMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr EditTool(AIToolMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr TrackToolCursor(AIToolMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr ToolMouseDown(AIToolMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr ToolMouseDrag(AIToolMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr ToolMouseUp(AIToolMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr SelectTool(AIToolMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr DeselectTool(AIToolMessage* /*message*/) { return kUnhandledMsgErr; }
    // These three answer 0, unlike the other tool operations, on purpose.
    virtual AIErr ReselectTool(AIToolMessage* /*message*/) { return kNoErr; }
    virtual AIErr DecreaseDiameter(AIToolMessage* /*message*/) { return kNoErr; }
    virtual AIErr IncreaseDiameter(AIToolMessage* /*message*/) { return kNoErr; }
    virtual AIErr EditLiveEffectParameters(AILiveEffectEditParamMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr GoLiveEffect(AILiveEffectGoMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr LiveEffectInterpolate(AILiveEffectInterpParamMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr LiveEffectGetInputType(AILiveEffectInputTypeMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr LiveEffectConvertColorSpace(AILiveEffectConvertColorMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr LiveEffectScaleParameters(AILiveEffectScaleParamMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr LiveEffectAdjustColors(AILiveEffectAdjustColorsMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr LiveEffectHandleMerge(AILiveEffectHandleMergeMessage* /*message*/) {
        return kUnhandledMsgErr;
    }
    virtual AIErr GoTimer(AITimerMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr GoClipboard(AIClipboardMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr CanCopyClipboard(AIClipboardMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr CloneClipboard(AIClipboardMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr DisposeClipboard(AIClipboardMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr WorkspaceWrite(WorkspaceMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr WorkspaceRestore(WorkspaceMessage* /*message*/) { return kUnhandledMsgErr; }
    virtual AIErr WorkspaceDefault(WorkspaceMessage* /*message*/) { return kUnhandledMsgErr; }

    [[nodiscard]] static bool IsReloadMsg(const char* caller, const char* selector) noexcept;
    /// True for the quiet codes, which are never shown.
    [[nodiscard]] static bool FilterError(AIErr error) noexcept;
    /// Writes the message of an error into the caller's `buffer` of `length` bytes: the one that
    /// string list 16050 has for its code, else the list's last. Returns false, and empties the
    /// buffer, if there is none.
    [[nodiscard]] static bool FindMsg(SPPluginRef pluginRef, AIErr error, char* buffer,
                                      std::int32_t length);
    /// [main-thread, modal] Shows the message of an error in an alert, also without acquired
    /// suites.
    static void DefaultError(SPPluginRef pluginRef, AIErr error);

    /// The host's reference to this plug-in, owned by the host.
    SPPluginRef GetPluginRef() const noexcept { return state_.pluginRef; }
    /// False if start-up or reload failed to acquire the suites, and while unloaded.
    [[nodiscard]] bool HasSuites() const noexcept { return state_.suites != nullptr; }

    /// [main-thread] Seconds since the epoch, for the repeat interval. Tests set another.
    static std::time_t (*clock)();

protected:
    /// All members, so that they move as one when the object is constructed anew over itself.
    struct State {
        SPPluginRef pluginRef = nullptr;
        std::array<char, 256> pluginName{};
        std::unique_ptr<Suites> suites;
        std::int32_t lockCount = 0;
        SPAccessRef pluginAccess = nullptr;
        AIErr lastError = kNoErr;
        std::int32_t errorRepeatInterval = 5; ///< seconds
        bool suppressRepeatedErrors = true;
        std::time_t lastErrorTime = 0;
    };

    explicit Plugin(State&& state) noexcept;

    /// Copies at most 256 bytes of `name`; if it takes them all, no zero ends them.
    void SetPluginName(const char* name) noexcept;

    State state_;

private:
    /// Creates the holder if there is none.
    [[nodiscard]] AIErr acquireSuites() noexcept;
    AIErr dispatchNotifier(const char* selector, AINotifierMessage* message);
};

/// The plug-in's object from start-up to shut-down or unloading, else null; not owned. A reload
/// does not set it again: texts, which are looked up through it, are empty from then on.
/// [main-thread]
extern Plugin* gPlugin;

/// Makes the concrete plug-in's object; null if there is no memory. Defined by the concrete
/// plug-in.
[[nodiscard]] std::unique_ptr<Plugin> AllocatePlugin(SPPluginRef pluginRef) noexcept;

/// Mends the object's dispatch table once its code has been unmapped and mapped again, maybe
/// elsewhere; the members stay as they are. Defined by the concrete plug-in.
void FixupReload(Plugin* plugin) noexcept;
