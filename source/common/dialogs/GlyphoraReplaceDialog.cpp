// SPDX-License-Identifier: MIT
// The host's fonts as a list, and the one that the user confirms.
#include "GlyphoraReplaceDialog.h"

#include "GLYLanguageMgr.h"
#include "adm/BaseADMItem.h"
#include "ai/unicodestring.h"
#include "suitepointers.h"

#include <array>
#include <string_view>

namespace {

constexpr std::int32_t listItem = 3;
constexpr std::int32_t okText = 9;
constexpr std::int32_t cancelText = 10;
constexpr std::int32_t titleText = 18;

ADMListRef listOf(const BaseADMDialog& dialog) {
    ADMListRef list = nullptr;
    const ADMErr error = sADMItem->GetList(dialog.GetItem(listItem), &list);
    if (error != kNoErr) {
        throw ai::Error(error);
    }
    return list;
}

/// In the host's order, which the user knows from its menus.
void listFonts(ADMListRef list) {
    std::int32_t count = 0;
    sAIFont->CountFonts(&count);
    for (std::int32_t i = 0; i < count; ++i) {
        ADMEntryRef entry = nullptr;
        AIFontKey key = nullptr;
        std::array<char, 1000> name{};
        if (sADMList->InsertEntry(list, i, &entry) == kNoErr &&
            sAIFont->GetNthFont(i, &key) == kNoErr &&
            sAIFont->GetUserFontName(key, name.data(), name.size()) == kNoErr) {
            sADMEntry->SetText(entry, name.data());
        }
    }
}

bool isUserChange(ADMNotifierRef notifier) {
    std::array<char, 512> type{};
    return sADMNotifier->GetNotifierType(notifier, type.data(), type.size()) == kNoErr &&
           std::string_view(type.data()) == kADMUserChangedNotifier;
}

/// Empty if there is none.
std::string activeText(ADMListRef list) {
    ADMEntryRef entry = nullptr;
    std::array<char, 512> text{};
    if (sADMList->GetActiveEntry(list, &entry) == kNoErr && entry != nullptr) {
        sADMEntry->GetText(entry, text.data(), text.size());
    }
    return text.data();
}

} // namespace

std::int32_t GlyphoraReplaceDialog::getSelectedFont(std::string& name) const {
    if (selectedFont_.empty()) {
        return 1;
    }
    name = selectedFont_;
    return 0;
}

ADMErr GlyphoraReplaceDialog::Init() {
    const ADMErr error = BaseADMDialog::Init();
    listFonts(listOf(*this));
    const GLYLanguageMgr& texts = *GLYLanguageMgr::getLanguageMgr();
    BaseADMItem(*this, kADMOKItemID).SetText(texts.getString(okText));
    BaseADMItem(*this, kADMCancelItemID).SetText(texts.getString(cancelText));
    sADMDialog->SetText(GetDialogRef(), texts.getString(titleText).c_str());
    return error;
}

void GlyphoraReplaceDialog::Notify(ADMNotifierRef notifier) {
    ADMItemRef item = nullptr;
    if (isUserChange(notifier) && sADMNotifier->GetItem(notifier, &item) == kNoErr &&
        item != nullptr && BaseADMItem(item).GetID() == kADMOKItemID) {
        selectedFont_ = activeText(listOf(*this));
    }
    BaseADMDialog::Notify(notifier);
}
