// SPDX-License-Identifier: MIT
// From the host's callbacks to virtual operations.
#include "adm/BaseADMDialog.h"

#include "suitepointers.h"

namespace {

/// Routines return something, so that one guard serves all.
struct Nothing {};

} // namespace

BaseADMDialog::~BaseADMDialog() {
    BaseADMDialog::Destroy();
}

ADMErr BaseADMDialog::Create(SPPluginRef plugin, const char* name, std::int32_t layoutID,
                             std::int32_t style, std::int32_t options) {
    ADMDialogRef dialog = nullptr;
    initError_ = kNoErr;
    failure_ = nullptr;
    const ADMErr error =
        sADMDialog->Create(plugin, name, layoutID, style, initProc, this, options, &dialog);
    if (error != kNoErr) {
        return error;
    }
    if (failure_ != nullptr || initError_ != kNoErr) {
        Destroy(); // of a derived class: it takes back what its Init() has begun
        rethrow();
    }
    return initError_;
}

void BaseADMDialog::Destroy() {
    if (dialog_ != nullptr) {
        sADMDialog->Destroy(std::exchange(dialog_, nullptr));
    }
}

std::int32_t BaseADMDialog::DisplayAsModal() {
    std::int32_t item = 0;
    if (dialog_ == nullptr || sADMDialog->DisplayAsModal(dialog_, &item) != kNoErr) {
        return 0;
    }
    return item;
}

std::int32_t BaseADMDialog::Modal(SPPluginRef plugin, const char* name, std::int32_t layoutID,
                                  std::int32_t style, std::int32_t options) {
    if (Create(plugin, name, layoutID, style, options) != kNoErr) {
        return 0;
    }
    const std::int32_t item = DisplayAsModal();
    Destroy();
    rethrow();
    return item;
}

ADMItemRef BaseADMDialog::GetItem(std::int32_t itemID) const noexcept {
    ADMItemRef item = nullptr;
    if (dialog_ == nullptr || sADMDialog->GetItem(dialog_, itemID, &item) != kNoErr) {
        return nullptr;
    }
    return item;
}

void BaseADMDialog::EndModal(std::int32_t item, bool cancelled) noexcept {
    if (dialog_ != nullptr) {
        sADMDialog->EndModal(dialog_, item, static_cast<AIBoolean>(cancelled));
    }
}

ADMErr BaseADMDialog::Init() {
    return kNoErr;
}

void BaseADMDialog::Notify(ADMNotifierRef notifier) {
    sADMDialog->DefaultNotify(dialog_, notifier);
}

void BaseADMDialog::Draw(ADMDrawerRef drawer) {
    sADMDialog->DefaultDraw(dialog_, drawer);
}

bool BaseADMDialog::Track(ADMTrackerRef tracker) {
    AIBoolean handled = 0;
    sADMDialog->DefaultTrack(dialog_, tracker, &handled);
    return handled != 0;
}

BaseADMDialog* BaseADMDialog::fromHost(ADMDialogRef dialog) noexcept {
    void* self = nullptr;
    return sADMDialog->GetUserData(dialog, &self) == kNoErr ? static_cast<BaseADMDialog*>(self)
                                                            : nullptr;
}

ADMErr BaseADMDialog::initProc(ADMDialogRef dialog, void* self) noexcept {
    return static_cast<BaseADMDialog*>(self)->begin(dialog);
}

/// Success in any case: the host's dialog must live until Destroy() has taken back what Init()
/// began.
ADMErr BaseADMDialog::begin(ADMDialogRef dialog) noexcept {
    dialog_ = dialog;
    sADMDialog->SetUserData(dialog, this);
    sADMDialog->SetNotifyProc(dialog, [](ADMDialogRef ref, ADMNotifierRef notifier) {
        guard(ref, Nothing{}, [notifier](BaseADMDialog& self) {
            self.Notify(notifier);
            return Nothing{};
        });
    });
    sADMDialog->SetDrawProc(dialog, [](ADMDialogRef ref, ADMDrawerRef drawer) {
        guard(ref, Nothing{}, [drawer](BaseADMDialog& self) {
            self.Draw(drawer);
            return Nothing{};
        });
    });
    sADMDialog->SetTrackProc(dialog, [](ADMDialogRef ref, ADMTrackerRef tracker) {
        return guard(ref, AIBoolean{0}, [tracker](BaseADMDialog& self) {
            return static_cast<AIBoolean>(self.Track(tracker));
        });
    });
    initError_ = guard(dialog, kNoErr, [](BaseADMDialog& self) { return self.Init(); });
    return kNoErr;
}

void BaseADMDialog::fail(std::exception_ptr failure) noexcept {
    if (failure_ == nullptr) {
        failure_ = std::move(failure);
    }
    EndModal(kADMCancelItemID, true);
}

void BaseADMDialog::rethrow() {
    if (failure_ != nullptr) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}
