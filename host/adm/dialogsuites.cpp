// SPDX-License-Identifier: MIT
// The suites of dialogs, items, notifiers and trackers.
#include "host/adm/admsuites.h"
#include "host/adm/suitebodies.h"

namespace host {

namespace {

// "ADM Dialog Suite"

SPErr createDialog(Dialogs& dialogs, SPPluginRef ref, const char* name, std::int32_t layoutID,
                   std::int32_t style, ADMDialogInitProc init, void* data, std::int32_t /*options*/,
                   ADMDialogRef* dialog) {
    Plugin* const plugin = dialogs.core().plugin(ref);
    if (plugin == nullptr || plugin->state() != PluginState::Running || name == nullptr ||
        style != kADMModalDialogStyle || dialog == nullptr) {
        return kBadParameterErr;
    }
    return dialogs.create(*plugin, name, layoutID, init, data, *dialog);
}

SPErr destroyDialog(Dialogs& dialogs, ADMDialogRef ref) {
    return with(dialogs, ref, [&](Dialog& dialog) { return dialogs.destroy(dialog); });
}

SPErr displayAsModal(Dialogs& dialogs, ADMDialogRef ref, std::int32_t* item) {
    return with(dialogs, ref, [&](Dialog& dialog) { return dialogs.runModal(dialog, *item); });
}

SPErr endModal(Dialogs& dialogs, ADMDialogRef ref, std::int32_t item, AIBoolean cancelled) {
    return with(dialogs, ref,
                [&](Dialog& dialog) { dialogs.endModal(dialog, item, cancelled != 0); });
}

SPErr getItem(Dialogs& dialogs, ADMDialogRef ref, std::int32_t itemID, ADMItemRef* result) {
    return with(dialogs, ref, [&](Dialog& dialog) {
        const Item* const item = dialog.item(itemID);
        if (item == nullptr) {
            return kBadParameterErr;
        }
        *result = item->handle;
        return kNoErr;
    });
}

SPErr setDialogBounds(Dialogs& dialogs, ADMDialogRef ref, const ADMRect* bounds) {
    return changeMember<&Dialog::bounds>(dialogs, ref, *bounds);
}

SPErr defaultNotifyDialog(Dialogs& dialogs, ADMDialogRef ref, ADMNotifierRef notifierRef) {
    const DialogNotifier* const notifier = dialogs.find(notifierRef);
    return with(dialogs, ref, [&](Dialog& dialog) {
        if (notifier == nullptr) {
            return kBadParameterErr;
        }
        dialogs.defaultNotify(dialog, *notifier);
        return kNoErr;
    });
}

/// The host draws nothing there, and tracks nothing.
template <typename Handle>
SPErr defaultDraw(Dialogs& dialogs, Handle handle, ADMDrawerRef drawer) {
    return dialogs.find(handle) != nullptr && dialogs.find(drawer) != nullptr ? kNoErr
                                                                              : kBadParameterErr;
}

template <typename Handle>
SPErr defaultTrack(Dialogs& dialogs, Handle handle, ADMTrackerRef tracker, AIBoolean* handled) {
    *handled = 0;
    return dialogs.find(handle) != nullptr && dialogs.find(tracker) != nullptr ? kNoErr
                                                                               : kBadParameterErr;
}

SPErr createTimer(Dialogs& dialogs, ADMDialogRef ref, std::int32_t milliseconds, ADMTimerProc proc,
                  ADMTimerAbortProc abort, ADMTimerRef* timer) {
    if (proc == nullptr || timer == nullptr) {
        return kBadParameterErr;
    }
    return with(dialogs, ref, [&](Dialog& dialog) {
        return dialogs.addTimer(dialog, milliseconds, proc, abort, *timer);
    });
}

// "ADM Item Suite"

SPErr getItemID(Dialogs& dialogs, ADMItemRef ref, std::int32_t* itemID) {
    return getMember<&Item::id>(dialogs, ref, itemID);
}

SPErr getItemDialog(Dialogs& dialogs, ADMItemRef ref, ADMDialogRef* dialog) {
    return with(dialogs, ref, [&](const Item& item) { *dialog = item.dialog.handle; });
}

SPErr getItemBounds(Dialogs& dialogs, ADMItemRef ref, ADMRect* bounds) {
    return getMember<&Item::bounds>(dialogs, ref, bounds);
}

SPErr invalidate(Dialogs& dialogs, ADMItemRef ref) {
    return with(dialogs, ref, [&](Item& item) { dialogs.changed(item); });
}

SPErr setItemStyle(Dialogs& dialogs, ADMItemRef ref, std::int32_t style) {
    return with(dialogs, ref, [&](Item& item) {
        if (item.tree == nullptr || (style != 0 && style != kADMMultiSelectListStyle)) {
            return kBadParameterErr;
        }
        item.tree->multiSelect = style == kADMMultiSelectListStyle;
        dialogs.changed(item);
        return kNoErr;
    });
}

template <Tree::Kind kind, typename ListRef>
SPErr getList(Dialogs& dialogs, ADMItemRef ref, ListRef* list) {
    return with(dialogs, ref, [&](const Item& item) {
        if (item.tree == nullptr || item.tree->kind() != kind) {
            return kBadParameterErr;
        }
        *list = reinterpret_cast<ListRef>(item.tree->top().handle);
        return kNoErr;
    });
}

SPErr defaultNotifyItem(Dialogs& dialogs, ADMItemRef ref, ADMNotifierRef notifier) {
    return with(dialogs, ref, [&](Item& item) {
        if (dialogs.find(notifier) == nullptr) {
            return kBadParameterErr;
        }
        dialogs.defaultNotify(item, notifier);
        return kNoErr;
    });
}

// "ADM Notifier Suite", "ADM Tracker Suite"

SPErr getNotifierItem(Dialogs& dialogs, ADMNotifierRef ref, ADMItemRef* item) {
    return with(dialogs, ref, [&](const DialogNotifier& notifier) {
        *item = notifier.item != nullptr ? notifier.item->handle : nullptr;
    });
}

SPErr getNotifierType(Dialogs& dialogs, ADMNotifierRef ref, char* buffer, std::int32_t size) {
    return with(dialogs, ref, [&](const DialogNotifier& notifier) {
        if (size < 1) {
            return kBadParameterErr;
        }
        copyText(notifier.type, buffer, size);
        return kNoErr;
    });
}

SPErr getModifiers(Dialogs& dialogs, ADMTrackerRef ref, std::uint32_t* modifiers) {
    return getMember<&DialogTracker::modifiers>(dialogs, ref, modifiers);
}

template <CallName name, auto body, Nulls nulls = Nulls::Refused>
constexpr auto inDialogs = Entry<ADMDialogSuite, name, body, nulls>::call;
template <CallName name, auto body, Nulls nulls = Nulls::Refused>
constexpr auto inItems = Entry<ADMItemSuite, name, body, nulls>::call;

constexpr ADMDialogSuite dialogTable{
    inDialogs<"Create", createDialog, Nulls::Allowed>,
    inDialogs<"Destroy", destroyDialog>,
    inDialogs<"DisplayAsModal", displayAsModal>,
    inDialogs<"EndModal", endModal>,
    inDialogs<"GetItem", getItem>,
    inDialogs<"SetUserData", setMember<&Dialog::userData, ADMDialogRef, void*>, Nulls::Allowed>,
    inDialogs<"GetUserData", getMember<&Dialog::userData, ADMDialogRef, void*>>,
    inDialogs<"SetText", changeMember<&Dialog::title, ADMDialogRef, const char*>>,
    inDialogs<"SetBoundsRect", setDialogBounds>,
    inDialogs<"Show", changeMember<&Dialog::visible, ADMDialogRef, AIBoolean>>,
    inDialogs<"ForceOnScreen", changeMember<&Dialog::forcedOnScreen, ADMDialogRef, AIBoolean>>,
    inDialogs<"SetMask", setMember<&Dialog::mask, ADMDialogRef, std::uint32_t>>,
    inDialogs<"SetNotifyProc", setMember<&Dialog::notify, ADMDialogRef, ADMDialogNotifyProc>,
              Nulls::Allowed>,
    inDialogs<"SetDrawProc", setMember<&Dialog::draw, ADMDialogRef, ADMDialogDrawProc>,
              Nulls::Allowed>,
    inDialogs<"SetTrackProc", setMember<&Dialog::track, ADMDialogRef, ADMDialogTrackProc>,
              Nulls::Allowed>,
    inDialogs<"DefaultNotify", defaultNotifyDialog>,
    inDialogs<"DefaultDraw", defaultDraw<ADMDialogRef>>,
    inDialogs<"DefaultTrack", defaultTrack<ADMDialogRef>>,
    inDialogs<"CreateTimer", createTimer, Nulls::Allowed>,
};

constexpr ADMItemSuite itemTable{
    inItems<"GetID", getItemID>,
    inItems<"GetDialog", getItemDialog>,
    inItems<"SetUserData", setMember<&Item::userData, ADMItemRef, void*>, Nulls::Allowed>,
    inItems<"GetUserData", getMember<&Item::userData, ADMItemRef, void*>>,
    inItems<"Enable", changeMember<&Item::enabled, ADMItemRef, AIBoolean>>,
    inItems<"SetText", changeMember<&Item::text, ADMItemRef, const char*>>,
    inItems<"GetBoundsRect", getItemBounds>,
    inItems<"Invalidate", invalidate>,
    inItems<"SetItemStyle", setItemStyle>,
    inItems<"GetList", getList<Tree::Kind::Flat, ADMListRef>>,
    inItems<"GetHierarchyList", getList<Tree::Kind::Hierarchy, ADMHierarchyListRef>>,
    inItems<"SetMask", setMember<&Item::mask, ADMItemRef, std::uint32_t>>,
    inItems<"SetNotifyProc", setMember<&Item::notify, ADMItemRef, ADMItemNotifyProc>,
            Nulls::Allowed>,
    inItems<"SetDrawProc", setMember<&Item::draw, ADMItemRef, ADMItemDrawProc>, Nulls::Allowed>,
    inItems<"SetTrackProc", setMember<&Item::track, ADMItemRef, ADMItemTrackProc>, Nulls::Allowed>,
    inItems<"DefaultNotify", defaultNotifyItem>,
    inItems<"DefaultDraw", defaultDraw<ADMItemRef>>,
    inItems<"DefaultTrack", defaultTrack<ADMItemRef>>,
};

constexpr ADMNotifierSuite notifierTable{
    Entry<ADMNotifierSuite, "GetItem", getNotifierItem>::call,
    Entry<ADMNotifierSuite, "GetNotifierType", getNotifierType>::call,
};
constexpr ADMTrackerSuite trackerTable{
    Entry<ADMTrackerSuite, "GetModifiers", getModifiers>::call,
};

} // namespace

void provideDialogSuites(SuiteRegistry& suites) {
    suites.provide(dialogTable);
    suites.provide(itemTable);
    suites.provide(notifierTable);
    suites.provide(trackerTable);
    provideListSuites(suites);
    provideDrawerSuite(suites);
}

} // namespace host
