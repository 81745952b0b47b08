// SPDX-License-Identifier: MIT
// Keeping menu groups and items.
#include "host/core/menus.h"

#include <algorithm>
#include <utility>

namespace host {

Menus::Menus() {
    addGroup({std::string(helpGroup), nullptr, 0});
    addGroup({std::string(aboutGroup), nullptr, 0});
}

AIMenuGroup Menus::findGroup(std::string_view name) noexcept {
    const auto found =
        std::find_if(groupOrder_.begin(), groupOrder_.end(),
                     [&](AIMenuGroup handle) { return groups_.find(handle)->name == name; });
    return found == groupOrder_.end() ? nullptr : *found;
}

AIMenuGroup Menus::addGroup(MenuGroup group) {
    groupOrder_.push_back(groups_.add(std::move(group)));
    return groupOrder_.back();
}

AIMenuItemHandle Menus::addItem(MenuItem item) {
    itemOrder_.push_back(items_.add(std::move(item)));
    return itemOrder_.back();
}

void Menus::removeAllOf(PluginNumber plugin) {
    std::erase_if(itemOrder_, [&](AIMenuItemHandle handle) {
        return items_.find(handle)->plugin == plugin && items_.remove(handle);
    });
    std::erase_if(groupOrder_, [&](AIMenuGroup handle) {
        const AIMenuItemHandle parent = groups_.find(handle)->parent;
        return parent != nullptr && items_.find(parent) == nullptr && groups_.remove(handle);
    });
    // What another plug-in had put into a group that is gone goes with it.
    std::erase_if(itemOrder_, [&](AIMenuItemHandle handle) {
        return groups_.find(items_.find(handle)->group) == nullptr && items_.remove(handle);
    });
}

} // namespace host
