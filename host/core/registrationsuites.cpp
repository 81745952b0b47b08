// SPDX-License-Identifier: MIT
// The suites by which plug-ins register for notifications, timers and menu items.
#include "host/core/core.h"
#include "host/core/coresuites.h"
#include "host/core/guard.h"

namespace host {

namespace {

/// The plug-in that something is registered for; nullptr, and noted, when it cannot have anything.
Plugin* registrant(Core& core, SPPluginRef ref, const char* what) {
    Plugin* const plugin = core.plugin(ref);
    if (plugin == nullptr || plugin->state() == PluginState::Ended) {
        core.callerMisbehaves(std::string("registered a ") + what + " for an unknown plug-in");
        return nullptr;
    }
    return plugin;
}

template <typename Handle>
SPErr giveNth(const std::vector<Handle>& all, std::int32_t n, Handle* result) {
    if (n < 0 || static_cast<std::size_t>(n) >= all.size()) {
        return kBadParameterErr;
    }
    *result = all[static_cast<std::size_t>(n)];
    return kNoErr;
}

template <typename Handle>
SPErr giveCount(const std::vector<Handle>& all, std::int32_t* count) {
    *count = static_cast<std::int32_t>(all.size());
    return kNoErr;
}

/// The reference of the plug-in that a registration belongs to.
template <typename Registration>
SPErr givePlugin(Core& core, const Registration* registration, SPPluginRef* plugin) {
    if (registration == nullptr) {
        return kBadParameterErr;
    }
    *plugin = core.plugin(registration->plugin)->ref();
    return kNoErr;
}

template <typename Registration>
SPErr giveText(const Registration* registration, std::string Registration::*text,
               const char** result) {
    if (registration == nullptr) {
        return kBadParameterErr;
    }
    *result = (registration->*text).c_str();
    return kNoErr;
}

// "AI Notifier Suite"

SPErr addNotifier(Core& core, SPPluginRef self, const char* name, const char* type,
                  AINotifierHandle* notifier) {
    if (self == nullptr || name == nullptr || type == nullptr) {
        return kBadParameterErr;
    }
    const Plugin* const plugin = registrant(core, self, "notifier");
    if (plugin == nullptr) {
        return kBadParameterErr;
    }
    const AINotifierHandle handle = core.notifiers().add({plugin->number(), name, type});
    if (notifier != nullptr) {
        *notifier = handle;
    }
    return kNoErr;
}

SPErr countNotifiers(Core& core, std::int32_t* count) {
    return giveCount(core.notifiers().all(), count);
}

SPErr getNthNotifier(Core& core, std::int32_t n, AINotifierHandle* notifier) {
    return giveNth(core.notifiers().all(), n, notifier);
}

SPErr getNotifierPlugin(Core& core, AINotifierHandle notifier, SPPluginRef* plugin) {
    return givePlugin(core, core.notifiers().find(notifier), plugin);
}

SPErr getNotifierType(Core& core, AINotifierHandle notifier, const char** type) {
    return giveText(core.notifiers().find(notifier), &Notifier::type, type);
}

// "AI Timer Suite"

SPErr addTimer(Core& core, SPPluginRef self, const char* name, std::int32_t period,
               AITimerHandle* timer) {
    const Plugin* const plugin = registrant(core, self, "timer");
    if (plugin == nullptr || period < 1) {
        return kBadParameterErr;
    }
    *timer = core.timers().add(plugin->number(), name, static_cast<std::uint32_t>(period));
    return kNoErr;
}

SPErr setTimerActive(Core& core, AITimerHandle timer, AIBoolean active) {
    return core.timers().setActive(timer, active != 0) ? kNoErr : kBadParameterErr;
}

SPErr countTimers(Core& core, std::int32_t* count) {
    return giveCount(core.timers().all(), count);
}

SPErr getNthTimer(Core& core, std::int32_t n, AITimerHandle* timer) {
    return giveNth(core.timers().all(), n, timer);
}

SPErr getTimerPlugin(Core& core, AITimerHandle timer, SPPluginRef* plugin) {
    return givePlugin(core, core.timers().find(timer), plugin);
}

SPErr getTimerName(Core& core, AITimerHandle timer, const char** name) {
    return giveText(core.timers().find(timer), &Timer::name, name);
}

// "AI Menu Suite"

SPErr addMenuItem(Core& core, SPPluginRef self, const char* name, const char* groupName,
                  const char* itemText, std::int32_t options, AIMenuItemHandle* item) {
    const Plugin* const plugin = registrant(core, self, "menu item");
    const AIMenuGroup group = core.menus().findGroup(groupName);
    if (plugin == nullptr || group == nullptr) {
        return kBadParameterErr;
    }
    *item = core.menus().addItem({plugin->number(), name, itemText, group, options});
    return kNoErr;
}

SPErr addMenuGroupAsSubMenu(Core& core, const char* name, std::int32_t options,
                            AIMenuItemHandle parent, AIMenuGroup* group) {
    if (core.menus().item(parent) == nullptr || core.menus().findGroup(name) != nullptr) {
        return kBadParameterErr;
    }
    *group = core.menus().addGroup({name, parent, options});
    return kNoErr;
}

SPErr countMenuGroups(Core& core, std::int32_t* count) {
    return giveCount(core.menus().groups(), count);
}

SPErr getNthMenuGroup(Core& core, std::int32_t n, AIMenuGroup* group) {
    return giveNth(core.menus().groups(), n, group);
}

SPErr getMenuGroupName(Core& core, AIMenuGroup group, const char** name) {
    return giveText(core.menus().group(group), &MenuGroup::name, name);
}

constexpr AINotifierSuite notifierTable{
    Entry<AINotifierSuite, "AddNotifier", addNotifier, Nulls::Allowed>::call,
    Entry<AINotifierSuite, "CountNotifiers", countNotifiers>::call,
    Entry<AINotifierSuite, "GetNthNotifier", getNthNotifier>::call,
    Entry<AINotifierSuite, "GetNotifierPlugin", getNotifierPlugin>::call,
    Entry<AINotifierSuite, "GetNotifierType", getNotifierType>::call,
};
constexpr AITimerSuite timerTable{
    Entry<AITimerSuite, "AddTimer", addTimer>::call,
    Entry<AITimerSuite, "SetTimerActive", setTimerActive>::call,
    Entry<AITimerSuite, "CountTimers", countTimers>::call,
    Entry<AITimerSuite, "GetNthTimer", getNthTimer>::call,
    Entry<AITimerSuite, "GetTimerPlugin", getTimerPlugin>::call,
    Entry<AITimerSuite, "GetTimerName", getTimerName>::call,
};
constexpr AIMenuSuite menuTable{
    Entry<AIMenuSuite, "AddMenuItem", addMenuItem>::call,
    Entry<AIMenuSuite, "AddMenuGroupAsSubMenu", addMenuGroupAsSubMenu>::call,
    Entry<AIMenuSuite, "CountMenuGroups", countMenuGroups>::call,
    Entry<AIMenuSuite, "GetNthMenuGroup", getNthMenuGroup>::call,
    Entry<AIMenuSuite, "GetMenuGroupName", getMenuGroupName>::call,
};

} // namespace

void provideRegistrationSuites(SuiteRegistry& suites) {
    suites.provide(notifierTable);
    suites.provide(timerTable);
    suites.provide(menuTable);
}

} // namespace host
