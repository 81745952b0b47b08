// SPDX-License-Identifier: MIT
// Suites about plug-ins and what they register: the basic suite, access, names, notifiers, timers,
// contexts, menus.
#include "tests/support/scriptedhost/scriptedhost.h"

#include <algorithm>

namespace scripted {

namespace {

/// Registers `value` and hands it out, if `ok`.
template <typename T>
AIErr add(const char* call, bool ok, std::vector<std::unique_ptr<T>>& all, T value, T** result) {
    const AIErr error = Host::current().enter(call, ok);
    if (error == kNoErr) {
        T* const added = all.emplace_back(std::make_unique<T>(std::move(value))).get();
        if (result != nullptr) {
            *result = added;
        }
    }
    return error;
}

/// Finds element `n` of what is registered.
template <typename T>
AIErr nth(const char* call, const std::vector<std::unique_ptr<T>>& all, std::int32_t n,
          T** result) {
    const auto index = static_cast<std::size_t>(n);
    const AIErr error = Host::current().enter(call, index < all.size());
    if (error == kNoErr) {
        *result = all[index].get();
    }
    return error;
}

template <typename T>
AIErr count(const char* call, const std::vector<std::unique_ptr<T>>& all, std::int32_t* result) {
    *result = static_cast<std::int32_t>(all.size());
    return Host::current().enter(call);
}

AIErr tell(const char* call, SPPluginRef owner, SPPluginRef* result) {
    *result = owner;
    return Host::current().enter(call);
}

AIErr tell(const char* call, const std::string& text, const char** result) {
    *result = text.c_str();
    return Host::current().enter(call);
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
    .AllocateBlock = nullptr,
    .FreeBlock = nullptr,
};

const SPAccessSuite accessTable = {
    .AcquirePlugin = [](SPPluginRef, SPAccessRef* access) -> SPErr {
        return add("AcquirePlugin", true, Host::current().accesses, SPAccess{}, access);
    },
    .ReleasePlugin = [](SPAccessRef access) -> SPErr {
        Host& host = Host::current();
        const bool erased = std::erase_if(host.accesses, [access](const auto& held) {
                                return held.get() == access;
                            }) == 1;
        return host.enter("ReleasePlugin", erased);
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
        return add("AddNotifier", true, Host::current().notifiers, AINotifier{self, name, type},
                   notifier);
    },
    .CountNotifiers = [](std::int32_t* result) -> AIErr {
        return count("CountNotifiers", Host::current().notifiers, result);
    },
    .GetNthNotifier = [](std::int32_t n, AINotifierHandle* notifier) -> AIErr {
        return nth("GetNthNotifier", Host::current().notifiers, n, notifier);
    },
    .GetNotifierPlugin = [](AINotifierHandle notifier, SPPluginRef* plugin) -> AIErr {
        return tell("GetNotifierPlugin", notifier->owner, plugin);
    },
    .GetNotifierType = [](AINotifierHandle notifier, const char** type) -> AIErr {
        return tell("GetNotifierType", notifier->type, type);
    },
};

const AITimerSuite timerTable = {
    .AddTimer = [](SPPluginRef self, const char* name, std::int32_t period,
                   AITimerHandle* timer) -> AIErr {
        return add("AddTimer", true, Host::current().timers, AITimer{self, name, period, true},
                   timer);
    },
    .SetTimerActive = [](AITimerHandle timer, AIBoolean active) -> AIErr {
        const AIErr error = Host::current().enter("SetTimerActive", timer != nullptr);
        if (error == kNoErr) {
            timer->active = active != 0;
        }
        return error;
    },
    .CountTimers = [](std::int32_t* result) -> AIErr {
        return count("CountTimers", Host::current().timers, result);
    },
    .GetNthTimer = [](std::int32_t n, AITimerHandle* timer) -> AIErr {
        return nth("GetNthTimer", Host::current().timers, n, timer);
    },
    .GetTimerPlugin = [](AITimerHandle timer, SPPluginRef* plugin) -> AIErr {
        return tell("GetTimerPlugin", timer->owner, plugin);
    },
    .GetTimerName = [](AITimerHandle timer, const char** name) -> AIErr {
        return tell("GetTimerName", timer->name, name);
    },
};

const AIAppContextSuite contextTable = {
    .PushAppContext = [](SPPluginRef plugin, AIAppContextHandle* context) -> AIErr {
        return add("PushAppContext", true, Host::current().contexts, AIAppContext{plugin}, context);
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
    .AddMenuItem = [](SPPluginRef, const char*, const char* groupName, const char* itemText,
                      std::int32_t, AIMenuItemHandle* item) -> AIErr {
        Host& host = Host::current();
        const bool known =
            std::any_of(host.menuGroups.begin(), host.menuGroups.end(),
                        [groupName](const auto& group) { return group->name == groupName; });
        return add("AddMenuItem", known, host.menuItems, AIMenuItem{groupName, itemText}, item);
    },
    .AddMenuGroupAsSubMenu = [](const char* name, std::int32_t, AIMenuItemHandle parent,
                                AIMenuGroup* group) -> AIErr {
        return add("AddMenuGroupAsSubMenu", parent != nullptr, Host::current().menuGroups,
                   AIMenuGroupRecord{name}, group);
    },
    .CountMenuGroups = [](std::int32_t* result) -> AIErr {
        return count("CountMenuGroups", Host::current().menuGroups, result);
    },
    .GetNthMenuGroup = [](std::int32_t n, AIMenuGroup* group) -> AIErr {
        return nth("GetNthMenuGroup", Host::current().menuGroups, n, group);
    },
    .GetMenuGroupName = [](AIMenuGroup group, const char** name) -> AIErr {
        return tell("GetMenuGroupName", group->name, name);
    },
};

} // namespace scripted
