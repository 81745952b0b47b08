// SPDX-License-Identifier: MIT
// Menu groups and items, without anything that shows them.
#pragma once

#include "ai/suites.h"
#include "host/core/blocks.h"
#include "host/core/handletable.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct MenuItem {
    PluginNumber plugin = noPlugin;
    std::string name;
    std::string text;
    AIMenuGroup group = nullptr;
    std::int32_t options = 0;
};

struct MenuGroup {
    std::string name;
    AIMenuItemHandle parent = nullptr; ///< opens as its sub-menu; null for the host's own groups
    std::int32_t options = 0;
};

/// [main-thread] The host's own groups stand first.
class Menus {
public:
    /// The group for the plug-ins' own about items.
    static constexpr std::string_view aboutGroup = kAIAboutPluginsMenuGroup;
    static constexpr std::string_view helpGroup = "Help";

    Menus();

    AIMenuGroup findGroup(std::string_view name) noexcept; ///< null: none
    AIMenuGroup addGroup(MenuGroup group);
    AIMenuItemHandle addItem(MenuItem item);

    const MenuGroup* group(AIMenuGroup handle) noexcept { return groups_.find(handle); }
    const MenuItem* item(AIMenuItemHandle handle) noexcept { return items_.find(handle); }
    const std::vector<AIMenuGroup>& groups() const noexcept { return groupOrder_; }
    const std::vector<AIMenuItemHandle>& items() const noexcept { return itemOrder_; }

    /// Takes a plug-in's items away, and the groups that opened below them.
    void removeAllOf(PluginNumber plugin);

private:
    HandleTable<MenuGroup, AIMenuGroup> groups_;
    HandleTable<MenuItem, AIMenuItemHandle> items_;
    std::vector<AIMenuGroup> groupOrder_;
    std::vector<AIMenuItemHandle> itemOrder_;
};

} // namespace host
