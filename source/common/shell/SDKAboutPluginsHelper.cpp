// SPDX-License-Identifier: MIT
// The menu calls behind the about entry.
#include "SDKAboutPluginsHelper.h"

#include "suitepointers.h"

#include <string_view>

AIErr SDKAboutPluginsHelper::AddAboutPluginsMenuItem(SPInterfaceMessage* message,
                                                     const char* groupName, const char* itemText,
                                                     const char* pluginName,
                                                     AIMenuItemHandle* resultMenuItem) const {
    const SPPluginRef self = message->d.self;
    bool exists = false;
    if (const AIErr error = GroupExists(groupName, &exists); error != kNoErr) {
        return error;
    }
    if (!exists) {
        AIMenuItemHandle parent = nullptr;
        AIMenuGroup group = nullptr;
        if (const AIErr error = sAIMenu->AddMenuItem(self, itemText, kAIAboutPluginsMenuGroup,
                                                     itemText, 0, &parent);
            error != kNoErr) {
            return error;
        }
        if (const AIErr error = sAIMenu->AddMenuGroupAsSubMenu(groupName, 0, parent, &group);
            error != kNoErr) {
            return error;
        }
    }
    return sAIMenu->AddMenuItem(self, pluginName, groupName, pluginName, 0, resultMenuItem);
}

AIErr SDKAboutPluginsHelper::GroupExists(const char* name, bool* result) const {
    *result = false;
    std::int32_t count = 0;
    if (const AIErr error = sAIMenu->CountMenuGroups(&count); error != kNoErr) {
        return error;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        AIMenuGroup group = nullptr;
        const char* groupName = nullptr;
        if (const AIErr error = sAIMenu->GetNthMenuGroup(i, &group); error != kNoErr) {
            return error;
        }
        if (const AIErr error = sAIMenu->GetMenuGroupName(group, &groupName); error != kNoErr) {
            return error;
        }
        if (std::string_view(groupName) == name) {
            *result = true;
            return kNoErr;
        }
    }
    return kNoErr;
}

void SDKAboutPluginsHelper::PopAboutBox(AIMenuMessage* menuMessage, const char* title,
                                        const char* text) const {
    sADMBasic->AboutBox(menuMessage->d.self, title, text);
}
