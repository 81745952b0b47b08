// SPDX-License-Identifier: MIT
// An entry for the plug-in in the host's menu of about boxes, and the box itself. Nothing here uses
// it yet: the font check has no menu.
#pragma once

#include "ai/messages.h"

/// The menu suite and the ADM Basic suite must be acquired. Throws nothing. [main-thread]
class SDKAboutPluginsHelper {
public:
    /// Adds the entry `pluginName` to the menu group `groupName`. If the host has no such group, it
    /// is made first, as a sub-menu named `itemText` of the host's own group of about boxes. The
    /// host owns `*resultMenuItem` and copies the texts. Returns the error of the first call that
    /// fails.
    [[nodiscard]] AIErr AddAboutPluginsMenuItem(SPInterfaceMessage* message, const char* groupName,
                                                const char* itemText, const char* pluginName,
                                                AIMenuItemHandle* resultMenuItem) const;
    /// Sets `*result` to whether the host has a menu group of that name. Returns the error of the
    /// first call that fails.
    [[nodiscard]] AIErr GroupExists(const char* name, bool* result) const;
    /// [main-thread, modal] Shows the about box of the plug-in that the menu message was sent to.
    void PopAboutBox(AIMenuMessage* menuMessage, const char* title, const char* text) const;
};
