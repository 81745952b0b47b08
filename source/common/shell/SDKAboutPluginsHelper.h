// SPDX-License-Identifier: MIT
// An entry for the plug-in in the host's menu of about boxes, and the box itself. The font check
// has no menu and does without it.
#pragma once

#include "ai/messages.h"

/// Main thread only; the menu and the ADM Basic suite must be acquired. Throws nothing.
class SDKAboutPluginsHelper {
public:
    /// Adds the entry `pluginName` to the menu group `groupName`. Where the host has no such group,
    /// it is made first, as a sub-menu named `itemText` of the host's own group of about boxes.
    /// `*resultMenuItem` is owned by the host. Returns the first failed call's error.
    AIErr AddAboutPluginsMenuItem(SPInterfaceMessage* message, const char* groupName,
                                  const char* itemText, const char* pluginName,
                                  AIMenuItemHandle* resultMenuItem) const;
    /// Tells in `*result` whether the host has a menu group of that name.
    AIErr GroupExists(const char* name, bool* result) const;
    /// Shows the about box of the plug-in that the menu message was sent to.
    void PopAboutBox(AIMenuMessage* menuMessage, const char* title, const char* text) const;
};
