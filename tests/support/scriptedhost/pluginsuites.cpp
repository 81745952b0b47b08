// SPDX-License-Identifier: MIT
// Suites about plug-ins and what they register: the basic suite, access, names, notifiers, timers,
// contexts, menus.
#include "tests/support/scriptedhost/scriptedhost.h"

#include <algorithm>
#include <cstdlib>

namespace scripted {

namespace {

/// Finds element `n` of what is registered.
template <typename T>
AIErr nth(const char* call, const std::vector<std::unique_ptr<T>>& all, std::int32_t n,
          T** result) {
    const AIErr error = Host::current().enter(call);
    if (error != kNoErr) {
        return error;
    }
    if (n < 0 || static_cast<std::size_t>(n) >= all.size()) {
        return kBadParameterErr;
    }
    *result = all[static_cast<std::size_t>(n)].get();
    return kNoErr;
}

template <typename T>
AIErr count(const char* call, const std::vector<std::unique_ptr<T>>& all, std::int32_t* result) {
    *result = static_cast<std::int32_t>(all.size());
    return Host::current().enter(call);
}

/// Gives what `value` makes of a registered object.
template <typename T, typename Value, typename Result>
AIErr tell(const char* call, const T* object, Value value, Result* result) {
    const AIErr error = Host::current().enter(call);
    if (error != kNoErr || object == nullptr) {
        return error != kNoErr ? error : kBadParameterErr;
    }
    *result = value(*object);
    return kNoErr;
}

} // namespace

const SPBasicSuite basicTable = {
    .AcquireSuite = [](const char* name, std::int32_t version, const void** suite) -> SPErr {
        Host& host = Host::current();
        host.acquisitions.emplace_back(name, version);
        *suite = nullptr;
        if (static_cast<int>(host.acquisitions.size()) != host.missingAcquisition) {
            *suite = findSuite(name, version);
        }
        if (*suite == nullptr) {
            return kSuiteNotFoundErr;
        }
        ++host.acquired[{name, version}];
        return kNoErr;
    },
    .ReleaseSuite = [](const char* name, std::int32_t version) -> SPErr {
        Host& host = Host::current();
        if (const AIErr error = host.enter("ReleaseSuite"); error != kNoErr) {
            return error;
        }
        host.releases.emplace_back(name, version);
        const auto held = host.acquired.find({name, version});
        if (held == host.acquired.end()) {
            host.misuse.push_back(std::string("released, not acquired: ") + name);
            return kSuiteNotFoundErr;
        }
        if (--held->second == 0) {
            host.acquired.erase(held);
        }
        return kNoErr;
    },
    .AllocateBlock = [](std::size_t size, void** block) -> SPErr {
        *block = std::malloc(size);
        return *block != nullptr ? kNoErr : kOutOfMemoryErr;
    },
    .FreeBlock = [](void* block) -> SPErr {
        std::free(block);
        return kNoErr;
    },
};

const SPAccessSuite accessTable = {
    .AcquirePlugin = [](SPPluginRef plugin, SPAccessRef* access) -> SPErr {
        Host& host = Host::current();
        if (const AIErr error = host.enter("AcquirePlugin"); error != kNoErr) {
            return error;
        }
        *access = host.accesses.emplace_back(std::make_unique<SPAccess>(SPAccess{plugin})).get();
        return kNoErr;
    },
    .ReleasePlugin = [](SPAccessRef access) -> SPErr {
        Host& host = Host::current();
        const bool erased = std::erase_if(host.accesses, [access](const auto& held) {
                                return held.get() == access;
                            }) == 1;
        const AIErr error = host.enter("ReleasePlugin");
        return error == kNoErr && !erased ? kBadParameterErr : error;
    },
};

const SPPluginsSuite pluginsTable = {
    .SetPluginName = [](SPPluginRef plugin, const char* name) -> SPErr {
        const AIErr error = Host::current().enter("SetPluginName");
        if (error == kNoErr) {
            plugin->name = name;
        }
        return error;
    },
};

const AINotifierSuite notifierTable = {
    .AddNotifier = [](SPPluginRef self, const char* name, const char* type,
                      AINotifierHandle* notifier) -> AIErr {
        Host& host = Host::current();
        if (const AIErr error = host.enter("AddNotifier"); error != kNoErr) {
            return error;
        }
        auto& added =
            host.notifiers.emplace_back(std::make_unique<AINotifier>(AINotifier{self, name, type}));
        if (notifier != nullptr) {
            *notifier = added.get();
        }
        return kNoErr;
    },
    .CountNotifiers = [](std::int32_t* result) -> AIErr {
        return count("CountNotifiers", Host::current().notifiers, result);
    },
    .GetNthNotifier = [](std::int32_t n, AINotifierHandle* notifier) -> AIErr {
        return nth("GetNthNotifier", Host::current().notifiers, n, notifier);
    },
    .GetNotifierPlugin = [](AINotifierHandle notifier, SPPluginRef* plugin) -> AIErr {
        return tell(
            "GetNotifierPlugin", notifier, [](const AINotifier& n) { return n.owner; }, plugin);
    },
    .GetNotifierType = [](AINotifierHandle notifier, const char** type) -> AIErr {
        return tell(
            "GetNotifierType", notifier, [](const AINotifier& n) { return n.type.c_str(); }, type);
    },
};

const AITimerSuite timerTable = {
    .AddTimer = [](SPPluginRef self, const char* name, std::int32_t period,
                   AITimerHandle* timer) -> AIErr {
        Host& host = Host::current();
        if (const AIErr error = host.enter("AddTimer"); error != kNoErr) {
            return error;
        }
        *timer =
            host.timers.emplace_back(std::make_unique<AITimer>(AITimer{self, name, period, true}))
                .get();
        return kNoErr;
    },
    .SetTimerActive = [](AITimerHandle timer, AIBoolean active) -> AIErr {
        const AIErr error = Host::current().enter("SetTimerActive");
        if (error != kNoErr || timer == nullptr) {
            return error != kNoErr ? error : kBadParameterErr;
        }
        timer->active = active != 0;
        return kNoErr;
    },
    .CountTimers = [](std::int32_t* result) -> AIErr {
        return count("CountTimers", Host::current().timers, result);
    },
    .GetNthTimer = [](std::int32_t n, AITimerHandle* timer) -> AIErr {
        return nth("GetNthTimer", Host::current().timers, n, timer);
    },
    .GetTimerPlugin = [](AITimerHandle timer, SPPluginRef* plugin) -> AIErr {
        return tell(
            "GetTimerPlugin", timer, [](const AITimer& t) { return t.owner; }, plugin);
    },
    .GetTimerName = [](AITimerHandle timer, const char** name) -> AIErr {
        return tell(
            "GetTimerName", timer, [](const AITimer& t) { return t.name.c_str(); }, name);
    },
};

const AIAppContextSuite contextTable = {
    .PushAppContext = [](SPPluginRef plugin, AIAppContextHandle* context) -> AIErr {
        Host& host = Host::current();
        if (const AIErr error = host.enter("PushAppContext"); error != kNoErr) {
            return error;
        }
        host.contextOwners.push_back(plugin);
        *context =
            host.contexts.emplace_back(std::make_unique<AIAppContext>(AIAppContext{plugin})).get();
        return kNoErr;
    },
    .PopAppContext = [](AIAppContextHandle context) -> AIErr {
        Host& host = Host::current();
        if (host.contexts.empty() || host.contexts.back().get() != context) {
            host.misuse.emplace_back("popped a context that is not the innermost");
            return kBadParameterErr;
        }
        host.contexts.pop_back();
        return kNoErr;
    },
};

const AIMenuSuite menuTable = {
    .AddMenuItem = [](SPPluginRef, const char* name, const char* groupName, const char* itemText,
                      std::int32_t, AIMenuItemHandle* item) -> AIErr {
        Host& host = Host::current();
        if (const AIErr error = host.enter("AddMenuItem"); error != kNoErr) {
            return error;
        }
        const bool known =
            std::any_of(host.menuGroups.begin(), host.menuGroups.end(),
                        [groupName](const auto& group) { return group->name == groupName; });
        if (!known) {
            return kBadParameterErr;
        }
        *item =
            host.menuItems
                .emplace_back(std::make_unique<AIMenuItem>(AIMenuItem{name, groupName, itemText}))
                .get();
        return kNoErr;
    },
    .AddMenuGroupAsSubMenu = [](const char* name, std::int32_t, AIMenuItemHandle parent,
                                AIMenuGroup* group) -> AIErr {
        Host& host = Host::current();
        if (const AIErr error = host.enter("AddMenuGroupAsSubMenu"); error != kNoErr) {
            return error;
        }
        if (parent == nullptr) {
            return kBadParameterErr;
        }
        *group = host.menuGroups
                     .emplace_back(std::make_unique<AIMenuGroupRecord>(AIMenuGroupRecord{name}))
                     .get();
        return kNoErr;
    },
    .CountMenuGroups = [](std::int32_t* result) -> AIErr {
        return count("CountMenuGroups", Host::current().menuGroups, result);
    },
    .GetNthMenuGroup = [](std::int32_t n, AIMenuGroup* group) -> AIErr {
        return nth("GetNthMenuGroup", Host::current().menuGroups, n, group);
    },
    .GetMenuGroupName = [](AIMenuGroup group, const char** name) -> AIErr {
        return tell(
            "GetMenuGroupName", group, [](const AIMenuGroupRecord& g) { return g.name.c_str(); },
            name);
    },
};

} // namespace scripted
