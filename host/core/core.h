// SPDX-License-Identifier: MIT
// The host without documents and windows: it owns the plug-ins and what they register, and knows at
// any moment which of them it is serving.
#pragma once

#include "ai/messages.h"
#include "host/core/blocks.h"
#include "host/core/contexts.h"
#include "host/core/frontend.h"
#include "host/core/guard.h"
#include "host/core/ledger.h"
#include "host/core/menus.h"
#include "host/core/notifiers.h"
#include "host/core/plugin.h"
#include "host/core/suiteregistry.h"
#include "host/core/timers.h"
#include "platform/timing.h"

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace host {

struct CoreOptions {
    /// What plug-ins are told, such as "de_DE"; windows speak it, too.
    std::string locale = "en_US";
    Timers::Clock clock = TickCount; ///< ticks of 1/60 s
};

/// [main-thread] One at a time in a process; the thread that makes it is the main thread.
class Core {
public:
    /// `frontend` outlives the core.
    explicit Core(Frontend& frontend, CoreOptions options = {});
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;
    /// As shutDownAll().
    ~Core();

    Frontend& frontend() noexcept { return frontend_; }
    Ledger& ledger() noexcept { return ledger_; }
    SuiteRegistry& suites() noexcept { return suites_; }
    Notifiers& notifiers() noexcept { return notifiers_; }
    Timers& timers() noexcept { return timers_; }
    Menus& menus() noexcept { return menus_; }
    Contexts& contexts() noexcept { return contexts_; }
    Blocks& blocks() noexcept { return blocks_; }
    const std::string& locale() const noexcept { return options_.locale; }
    const Timers::Clock& clock() const noexcept { return options_.clock; }
    static const SPBasicSuite& basicSuite() noexcept;

    /// Maps a bundle; startUp() comes next. Throws PluginError when it cannot.
    Plugin& load(const std::filesystem::path& bundle);
    /// A plug-in within the program.
    Plugin& addBuiltIn(std::string name, SPEntryProc entry, std::filesystem::path resources = {});
    /// nullptr for a reference that was never handed out.
    Plugin* plugin(SPPluginRef ref) noexcept;
    Plugin* plugin(PluginNumber number) noexcept;
    const std::vector<std::unique_ptr<Plugin>>& plugins() const noexcept { return plugins_; }
    /// Shuts down what still runs, the last one first; an answer other than success is reported.
    void shutDownAll() noexcept;
    void rename(Plugin& plugin, std::string name);

    /// "AI Notifier"/"AI Notify" to every registration of a type, in order of registration. An
    /// answer other than success is reported as an error; the first such answer is returned.
    SPErr notify(const char* type, void* data = nullptr);
    /// "SP Interface"/"About"; gives the plug-in's answer, and reports one other than success.
    SPErr askAbout(Plugin& plugin);
    /// "AI Timer"/"AI Go" for each timer that is due. Says how many were.
    std::size_t runTimers();
    /// "AI Menu"/"AI Go" for a chosen item, or "AI Update" before one is shown.
    SPErr sendMenu(const char* selector, AIMenuItemHandle item);

    /// While it lives, calls are in order: they come from the plug-in that is being served, or,
    /// with nullptr, from one that an event of the desktop woke.
    class ServeScope {
    public:
        ServeScope(Core& core, Plugin* plugin);
        ServeScope(const ServeScope&) = delete;
        ServeScope& operator=(const ServeScope&) = delete;
        ~ServeScope();

    private:
        Core& core_;
        PluginNumber before_;
    };

    /// While it lives, the code of a plug-in is being mapped or unmapped, and no call is in order.
    class LoadScope {
    public:
        LoadScope(Core& core, Plugin& plugin) noexcept : core_(core), before_(core.loading_) {
            core_.loading_ = &plugin;
        }
        LoadScope(const LoadScope&) = delete;
        LoadScope& operator=(const LoadScope&) = delete;
        ~LoadScope() { core_.loading_ = before_; }

    private:
        Core& core_;
        const Plugin* before_;
    };

    bool isServing() const noexcept { return !serving_.empty() && loading_ == nullptr; }
    bool isServing(const Plugin& plugin) const noexcept;
    /// [any-thread] The number of the plug-in that a call comes from, as far as can be told.
    PluginNumber caller() const noexcept { return caller_.load(std::memory_order_relaxed); }
    /// [any-thread] Notes misbehaviour of the caller.
    void callerMisbehaves(const std::string& what) noexcept;

    enum class Leaving : bool { ForAWhile, ForGood };
    /// [main-thread] Called when a plug-in was shut down, before its code goes: take back what it
    /// still holds, and note it. Calls of it are no longer served then.
    using Leaver = std::function<void(Plugin&)>;
    void onShutDown(Leaver leaver) { leavers_.push_back(std::move(leaver)); }
    void takeBackFrom(Plugin& plugin, Leaving leaving);
    void takeBackBlocksOf(Plugin& plugin);

    static bool isMainThread() noexcept {
        return mainThread_.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }
    void noteCallOffMainThread(const CallSite& site) noexcept;
    void noteCallOutsideMessages(const CallSite& site) noexcept;

    /// Uses of plug-ins that plug-ins hold, and texts that they keep here.
    struct Use {
        Plugin* used;
        PluginNumber holder;
    };
    struct KeptText {
        std::string text;
        PluginNumber holder;
    };
    HandleTable<Use, SPAccessRef>& uses() noexcept { return uses_; }
    HandleTable<KeptText, AIUnicodeStringHandle>& texts() noexcept { return texts_; }

private:
    Plugin& enlist(std::unique_ptr<Plugin> plugin);
    template <typename Message>
    SPErr tell(Plugin& target, const char* caller, const char* selector, Message& message,
               const std::string& what);
    void updateCaller() noexcept;

    static inline std::atomic<std::thread::id> mainThread_;

    Frontend& frontend_;
    CoreOptions options_;
    Ledger ledger_;
    SuiteRegistry suites_;
    Notifiers notifiers_;
    Timers timers_;
    Menus menus_;
    Contexts contexts_;
    Blocks blocks_;
    HandleTable<Use, SPAccessRef> uses_;
    HandleTable<KeptText, AIUnicodeStringHandle> texts_;
    std::vector<Leaver> leavers_;
    std::vector<const Plugin*> serving_; ///< innermost last; nullptr for an event
    const Plugin* loading_ = nullptr;
    std::atomic<PluginNumber> caller_ = noPlugin;
    /// For the main thread's changes of plug-ins and their names, and other threads' looks at them.
    std::mutex rosterMutex_;
    std::vector<std::unique_ptr<Plugin>> plugins_; ///< by number
    Published<Core> published_{*this};
};

} // namespace host
