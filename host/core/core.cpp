// SPDX-License-Identifier: MIT
// Plug-ins, the messages that go to all of them, and what is taken back from them.
#include "host/core/core.h"

#include "host/core/coresuites.h"
#include "host/core/text.h"
#include "host/core/translation.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

constexpr std::string_view unknownCaller = "unknown plug-in";

/// The first few; a plug-in that forgets everything would fill a screen.
std::string joined(const std::vector<std::string>& texts) {
    constexpr std::size_t shown = 5;
    std::string result;
    for (std::size_t i = 0; i < std::min(texts.size(), shown); ++i) {
        result += (i == 0 ? "" : ", ") + texts[i];
    }
    return texts.size() <= shown
               ? result
               : result + " and " + std::to_string(texts.size() - shown) + " more";
}

} // namespace

Core::Core(Frontend& frontend, CoreOptions options)
    : frontend_(frontend), options_(std::move(options)), ledger_(frontend),
      timers_(options_.clock) {
    mainThread_.store(std::this_thread::get_id(), std::memory_order_relaxed);
    CallSite::resetAll();
    chooseLanguage(options_.locale);
    provideCoreSuites(suites_);
}

Core::~Core() {
    shutDownAll();
    plugins_.clear();
}

void Core::shutDownAll() noexcept {
    for (auto plugin = plugins_.rbegin(); plugin != plugins_.rend(); ++plugin) {
        const PluginState state = (*plugin)->state();
        if (state != PluginState::Running && state != PluginState::Unmapped) {
            continue;
        }
        try {
            const SPErr error = (*plugin)->shutDown();
            if (error != kNoErr) {
                frontend_.reportError((*plugin)->name() + ": the plug-in shut down with error " +
                                      errorText(error));
            }
        } catch (const std::exception& problem) {
            frontend_.reportError(problem.what());
        }
    }
}

Plugin& Core::load(const std::filesystem::path& bundle) {
    const auto number = static_cast<PluginNumber>(plugins_.size());
    return enlist(std::make_unique<Plugin>(*this, number, Bundle::open(bundle)));
}

Plugin& Core::addBuiltIn(std::string name, SPEntryProc entry, std::filesystem::path resources) {
    const auto number = static_cast<PluginNumber>(plugins_.size());
    return enlist(
        std::make_unique<Plugin>(*this, number, std::move(name), entry, std::move(resources)));
}

Plugin& Core::enlist(std::unique_ptr<Plugin> plugin) {
    const std::lock_guard lock(rosterMutex_);
    plugins_.push_back(std::move(plugin));
    return *plugins_.back();
}

void Core::rename(Plugin& plugin, std::string name) {
    const std::lock_guard lock(rosterMutex_);
    plugin.setName(std::move(name));
}

Plugin* Core::plugin(SPPluginRef ref) noexcept {
    HandleBits bits;
    return HandleBits::unpack(ref, bits) && bits.generation == 0 && bits.index < plugins_.size()
               ? plugins_[bits.index].get()
               : nullptr;
}

Plugin* Core::plugin(PluginNumber number) noexcept {
    return number < plugins_.size() ? plugins_[number].get() : nullptr;
}

/// Sends a message to a plug-in if it runs, and reports an answer other than success to `what`.
template <typename Message>
SPErr Core::tell(Plugin& target, const char* caller, const char* selector, Message& message,
                 const std::string& what) {
    if (target.state() != PluginState::Running) {
        return kNoErr;
    }
    const SPErr error = target.send(caller, selector, message);
    if (error != kNoErr) {
        frontend_.reportError(target.name() + ": the plug-in answered " + what + " with error " +
                              errorText(error));
    }
    return error;
}

SPErr Core::notify(const char* type, void* data) {
    SPErr first = kNoErr;
    for (const AINotifierHandle handle : notifiers_.ofType(type)) {
        const Notifier* const notifier = notifiers_.find(handle);
        if (notifier == nullptr) {
            continue; // ended by an earlier one's doing
        }
        AINotifierMessage message;
        message.notifier = handle;
        message.type = type;
        message.notifyData = data;
        const SPErr error = tell(*plugins_[notifier->plugin], "AI Notifier", "AI Notify", message,
                                 std::string("\"") + type + "\"");
        first = first == kNoErr ? error : first;
    }
    return first;
}

SPErr Core::askAbout(Plugin& plugin) {
    SPInterfaceMessage message;
    return tell(plugin, "SP Interface", "About", message, "\"About\"");
}

std::size_t Core::runTimers() {
    const std::vector<AITimerHandle> due = timers_.takeDue();
    std::size_t count = 0;
    for (const AITimerHandle handle : due) {
        const Timer* const timer = timers_.find(handle);
        if (timer == nullptr || !timer->active) {
            continue;
        }
        Plugin& target = *plugins_[timer->plugin];
        AITimerMessage message;
        message.timer = handle;
        count += target.state() == PluginState::Running ? 1 : 0;
        tell(target, "AI Timer", "AI Go", message, "its timer \"" + timer->name + "\"");
    }
    return count;
}

SPErr Core::sendMenu(const char* selector, AIMenuItemHandle handle) {
    const MenuItem* const item = menus_.item(handle);
    if (item == nullptr) {
        return kBadParameterErr;
    }
    AIMenuMessage message;
    message.menuItem = handle;
    return plugins_[item->plugin]->send("AI Menu", selector, message);
}

Core::ServeScope::ServeScope(Core& core, Plugin* plugin) : core_(core), before_(core.caller()) {
    core_.serving_.push_back(plugin);
    core_.updateCaller();
}

Core::ServeScope::~ServeScope() {
    core_.serving_.pop_back();
    core_.caller_.store(before_, std::memory_order_relaxed);
}

bool Core::isServing(const Plugin& plugin) const noexcept {
    return std::find(serving_.begin(), serving_.end(), &plugin) != serving_.end();
}

/// An event may wake any plug-in; with only one running there is no doubt.
void Core::updateCaller() noexcept {
    const Plugin* caller = serving_.back();
    if (caller == nullptr) {
        const auto runs = [](const auto& plugin) {
            return plugin->state() == PluginState::Running;
        };
        const auto first = std::find_if(plugins_.begin(), plugins_.end(), runs);
        if (std::count_if(plugins_.begin(), plugins_.end(), runs) == 1) {
            caller = first->get();
        }
    }
    caller_.store(caller == nullptr ? noPlugin : caller->number(), std::memory_order_relaxed);
}

void Core::callerMisbehaves(const std::string& what) noexcept {
    const std::lock_guard lock(rosterMutex_);
    const PluginNumber number = caller();
    ledger_.report(number < plugins_.size() ? std::string_view(plugins_[number]->name())
                                            : unknownCaller,
                   what);
}

void Core::takeBackFrom(Plugin& plugin, Leaving leaving) {
    const std::vector<std::string> held = suites_.releaseAllOf(plugin.number());
    if (!held.empty()) {
        ledger_.report(
            plugin.name(),
            std::string("did not release ") + std::to_string(held.size()) + " suite(s) at its " +
                (leaving == Leaving::ForGood ? "shut-down: " : "unloading: ") + joined(held));
    }
    if (leaving == Leaving::ForAWhile) {
        return;
    }
    for (const Leaver& leaver : leavers_) {
        leaver(plugin);
    }
    uses_.forEach([&](SPAccessRef /*ref*/, const Use& use) {
        if (use.holder == plugin.number()) {
            use.used->dropUse();
        }
    });
    const auto takeBack = [&](auto& table, const std::string& what) {
        std::size_t leaked = 0;
        table.forEach([&](auto handle, const auto& value) {
            leaked += value.holder == plugin.number() && table.remove(handle) ? 1U : 0U;
        });
        if (leaked > 0) {
            ledger_.report(plugin.name(), "leaked " + std::to_string(leaked) + " " + what);
        }
    };
    takeBack(uses_, "access reference(s)");
    takeBack(texts_, "Unicode string(s)");
    notifiers_.removeAllOf(plugin.number());
    timers_.removeAllOf(plugin.number());
    menus_.removeAllOf(plugin.number());
}

void Core::takeBackBlocksOf(Plugin& plugin) {
    const Blocks::Sum leaked = blocks_.freeAllOf(plugin.number());
    if (leaked.blocks > 0) {
        ledger_.report(plugin.name(), "leaked " + std::to_string(leaked.blocks) +
                                          " block(s) of memory, " + std::to_string(leaked.bytes) +
                                          " bytes");
    }
}

void Core::noteCallOffMainThread(const CallSite& site) noexcept {
    callerMisbehaves("called " + site.name() + " off the main thread");
}

void Core::noteCallOutsideMessages(const CallSite& site) noexcept {
    const bool ended = loading_ != nullptr && loading_->state() == PluginState::Ended;
    ledger_.report(loading_ != nullptr ? std::string_view(loading_->name()) : unknownCaller,
                   "called " + site.name() +
                       (ended ? " after its shut-down" : " outside of any message"));
}

} // namespace host
