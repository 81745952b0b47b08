// SPDX-License-Identifier: MIT
// The suites by which plug-ins register for notifications, timers and menu items.
#include "host/core/core.h"
#include "host/core/coresuites.h"
#include "host/core/guard.h"

#include <functional>

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

/// `part` is a part of the core, `list` its list of handles.
template <auto part, auto list>
SPErr giveCount(Core& core, std::int32_t* count) {
    *count = static_cast<std::int32_t>(std::invoke(list, std::invoke(part, core)).size());
    return kNoErr;
}

template <auto part, auto list, typename Handle>
SPErr giveNth(Core& core, std::int32_t n, Handle* result) {
    const std::vector<Handle>& all = std::invoke(list, std::invoke(part, core));
    if (n < 0 || static_cast<std::size_t>(n) >= all.size()) {
        return kBadParameterErr;
    }
    *result = all[static_cast<std::size_t>(n)];
    return kNoErr;
}

/// The reference of the plug-in that a registration belongs to.
template <auto part, typename Handle>
SPErr givePlugin(Core& core, Handle handle, SPPluginRef* plugin) {
    const auto* const registration = std::invoke(part, core).find(handle);
    if (registration == nullptr) {
        return kBadParameterErr;
    }
    *plugin = core.plugin(registration->plugin)->ref();
    return kNoErr;
}

/// `find` looks a handle up in the part, `text` is a member of what it finds.
template <auto part, auto find, auto text, typename Handle>
SPErr giveText(Core& core, Handle handle, const char** result) {
    const auto* const registration = std::invoke(find, std::invoke(part, core), handle);
    if (registration == nullptr) {
        return kBadParameterErr;
    }
    *result = std::invoke(text, registration).c_str();
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

constexpr AINotifierSuite notifierTable{
    Entry<AINotifierSuite, "AddNotifier", addNotifier, Nulls::Allowed>::call,
    Entry<AINotifierSuite, "CountNotifiers", &giveCount<&Core::notifiers, &Notifiers::all>>::call,
    Entry<AINotifierSuite, "GetNthNotifier",
          &giveNth<&Core::notifiers, &Notifiers::all, AINotifierHandle>>::call,
    Entry<AINotifierSuite, "GetNotifierPlugin",
          &givePlugin<&Core::notifiers, AINotifierHandle>>::call,
    Entry<AINotifierSuite, "GetNotifierType",
          &giveText<&Core::notifiers, &Notifiers::find, &Notifier::type, AINotifierHandle>>::call,
};
constexpr AITimerSuite timerTable{
    Entry<AITimerSuite, "AddTimer", addTimer>::call,
    Entry<AITimerSuite, "SetTimerActive", setTimerActive>::call,
    Entry<AITimerSuite, "CountTimers", &giveCount<&Core::timers, &Timers::all>>::call,
    Entry<AITimerSuite, "GetNthTimer", &giveNth<&Core::timers, &Timers::all, AITimerHandle>>::call,
    Entry<AITimerSuite, "GetTimerPlugin", &givePlugin<&Core::timers, AITimerHandle>>::call,
    Entry<AITimerSuite, "GetTimerName",
          &giveText<&Core::timers, &Timers::find, &Timer::name, AITimerHandle>>::call,
};
constexpr AIMenuSuite menuTable{
    Entry<AIMenuSuite, "AddMenuItem", addMenuItem>::call,
    Entry<AIMenuSuite, "AddMenuGroupAsSubMenu", addMenuGroupAsSubMenu>::call,
    Entry<AIMenuSuite, "CountMenuGroups", &giveCount<&Core::menus, &Menus::groups>>::call,
    Entry<AIMenuSuite, "GetNthMenuGroup",
          &giveNth<&Core::menus, &Menus::groups, AIMenuGroup>>::call,
    Entry<AIMenuSuite, "GetMenuGroupName",
          &giveText<&Core::menus, &Menus::group, &MenuGroup::name, AIMenuGroup>>::call,
};

} // namespace

void provideRegistrationSuites(SuiteRegistry& suites) {
    suites.provide(notifierTable);
    suites.provide(timerTable);
    suites.provide(menuTable);
}

} // namespace host
