// SPDX-License-Identifier: MIT
// A dialog and its items, as plain objects: what a plug-in has made of a layout.
#pragma once

#include "host/adm/layout.h"
#include "host/adm/tree.h"
#include "host/core/blocks.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

struct Dialog;

/// What dialogs and items have alike: routines are nullptr where the host's own runs.
template <typename NotifyProc, typename DrawProc, typename TrackProc>
struct Routines {
    void* userData = nullptr; ///< the plug-in's
    std::uint32_t mask = kADMDefaultTrackingMask;
    NotifyProc notify = nullptr;
    DrawProc draw = nullptr;
    TrackProc track = nullptr;
};

struct Item : Routines<ADMItemNotifyProc, ADMItemDrawProc, ADMItemTrackProc> {
    Item(Dialog& of, const LayoutItem& layout);

    Dialog& dialog;
    std::int32_t id;
    ItemKind kind;
    ADMItemRef handle = nullptr;
    ADMRect bounds; ///< within the dialog; whoever shows it keeps it up to date
    std::string text;
    bool enabled = true;
    std::unique_ptr<Tree> tree; ///< of a list
};

struct Dialog : Routines<ADMDialogNotifyProc, ADMDialogDrawProc, ADMDialogTrackProc> {
    Dialog(PluginNumber owner, std::string dialogName, Layout dialogLayout);
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    /// nullptr when there is none.
    Item* item(std::int32_t id) noexcept;

    PluginNumber plugin;
    std::string name;
    Layout layout;
    ADMDialogRef handle = nullptr;
    std::string title;
    ADMRect bounds; ///< on the screen
    bool visible = true;
    bool forcedOnScreen = true;
    std::vector<std::unique_ptr<Item>> items;

    /// How a modal run ends, once somebody has ended it.
    struct Ending {
        std::int32_t item = 0;
        bool cancelled = false;
    };
    bool running = false;
    bool dying = false; ///< being destroyed
    std::optional<Ending> ending;
};

} // namespace host
