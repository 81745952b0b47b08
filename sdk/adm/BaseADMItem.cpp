// SPDX-License-Identifier: MIT
// The calls behind BaseADMItem.
#include "adm/BaseADMItem.h"

#include "adm/BaseADMDialog.h"
#include "ai/unicodestring.h"
#include "suitepointers.h"

namespace {

void check(ADMErr result) {
    if (result != kNoErr) {
        throw ai::Error(result);
    }
}

/// Does `work` for the attached item, under the guard of its dialog.
template <typename Result, typename Work>
Result forAttached(ADMItemRef item, Result otherwise, Work work) noexcept {
    ADMDialogRef dialog = nullptr;
    void* self = nullptr;
    if (sADMItem->GetDialog(item, &dialog) != kNoErr ||
        sADMItem->GetUserData(item, &self) != kNoErr || self == nullptr) {
        return otherwise;
    }
    return BaseADMDialog::guard(dialog, otherwise, [&](BaseADMDialog& /*dialog*/) {
        return work(*static_cast<BaseADMItem*>(self));
    });
}

} // namespace

BaseADMItem::BaseADMItem(const BaseADMDialog& dialog, std::int32_t itemID)
    : item_(dialog.GetItem(itemID)) {
    check(item_ != nullptr ? kNoErr : kBadParameterErr);
}

void BaseADMItem::Attach() {
    struct Nothing {};
    check(sADMItem->SetUserData(item_, this));
    check(sADMItem->SetNotifyProc(item_, [](ADMItemRef item, ADMNotifierRef notifier) {
        forAttached(item, Nothing{}, [notifier](BaseADMItem& self) {
            self.Notify(notifier);
            return Nothing{};
        });
    }));
    check(sADMItem->SetDrawProc(item_, [](ADMItemRef item, ADMDrawerRef drawer) {
        forAttached(item, Nothing{}, [drawer](BaseADMItem& self) {
            self.Draw(drawer);
            return Nothing{};
        });
    }));
    check(sADMItem->SetTrackProc(item_, [](ADMItemRef item, ADMTrackerRef tracker) {
        return forAttached(item, AIBoolean{0}, [tracker](BaseADMItem& self) {
            return static_cast<AIBoolean>(self.Track(tracker));
        });
    }));
    Init();
}

std::int32_t BaseADMItem::GetID() const {
    std::int32_t itemID = 0;
    check(sADMItem->GetID(item_, &itemID));
    return itemID;
}

ADMRect BaseADMItem::GetBoundsRect() const {
    ADMRect bounds{};
    check(sADMItem->GetBoundsRect(item_, &bounds));
    return bounds;
}

void BaseADMItem::Enable(bool enabled) {
    check(sADMItem->Enable(item_, static_cast<AIBoolean>(enabled)));
}

void BaseADMItem::SetText(const std::string& utf8) {
    check(sADMItem->SetText(item_, utf8.c_str()));
}

void BaseADMItem::SetItemStyle(std::int32_t style) {
    check(sADMItem->SetItemStyle(item_, style));
}

void BaseADMItem::Invalidate() {
    check(sADMItem->Invalidate(item_));
}

void BaseADMItem::Notify(ADMNotifierRef notifier) {
    check(sADMItem->DefaultNotify(item_, notifier));
}

void BaseADMItem::Draw(ADMDrawerRef drawer) {
    check(sADMItem->DefaultDraw(item_, drawer));
}

bool BaseADMItem::Track(ADMTrackerRef tracker) {
    AIBoolean handled = 0;
    check(sADMItem->DefaultTrack(item_, tracker, &handled));
    return handled != 0;
}
