// SPDX-License-Identifier: MIT
// A dialog of the host as a class: the host's callbacks become virtual operations.
#pragma once

#include "adm/types.h"

#include <exception>
#include <utility>

/// Derive, override what the dialog does, and run it with Modal(). No exception of a callback
/// reaches the host: the first ends the dialog and is thrown again by Modal(), or by Create() if
/// Init() threw it. [main-thread], with the suites acquired.
class BaseADMDialog {
public:
    BaseADMDialog() = default;
    BaseADMDialog(const BaseADMDialog&) = delete;
    BaseADMDialog& operator=(const BaseADMDialog&) = delete;
    /// Destroys the host's dialog if Destroy() was not called; overrides of it do not run then.
    virtual ~BaseADMDialog();

    /// Makes the host's dialog by layout `layoutID` and calls Init(). On an error there is no
    /// dialog; what Init() has begun is ended by Destroy().
    virtual ADMErr Create(SPPluginRef plugin, const char* name, std::int32_t layoutID,
                          std::int32_t style, std::int32_t options);
    /// Destroys the host's dialog, if there is one.
    virtual void Destroy();
    /// Shows the dialog until it ends, and returns the item that ended it; 0 if there is none.
    virtual std::int32_t DisplayAsModal();
    /// Create(), DisplayAsModal() and Destroy(). Returns the item that ended the dialog, or 0 if it
    /// could not be shown. Throws what a callback threw.
    std::int32_t Modal(SPPluginRef plugin, const char* name, std::int32_t layoutID,
                       std::int32_t style, std::int32_t options);

    /// The host's dialog, null if there is none.
    ADMDialogRef GetDialogRef() const noexcept { return dialog_; }
    /// Null if there is no dialog or no such item.
    ADMItemRef GetItem(std::int32_t itemID) const noexcept;
    /// Ends the modal run with `item` as what ended it; nobody is notified. `cancelled` if the user
    /// gave up.
    void EndModal(std::int32_t item, bool cancelled) noexcept;

    /// For a routine that is handed to the host by itself: does `work` for the dialog, and if that
    /// throws, keeps the exception, ends the dialog, and returns `otherwise`. `dialog` is one of
    /// this class.
    template <typename Work, typename Result>
    static Result guard(ADMDialogRef dialog, Result otherwise, Work work) noexcept {
        BaseADMDialog* const self = fromHost(dialog);
        if (self == nullptr) {
            return otherwise;
        }
        try {
            return work(*self);
        } catch (...) {
            self->fail(std::current_exception());
            return otherwise;
        }
    }

protected:
    /// The dialog was made and is not shown yet. An error undoes it.
    virtual ADMErr Init();
    /// Something happened to the dialog or an item in it. The base does what the host does.
    virtual void Notify(ADMNotifierRef notifier);
    virtual void Draw(ADMDrawerRef drawer);
    /// Whether the mouse was dealt with.
    virtual bool Track(ADMTrackerRef tracker);

private:
    static BaseADMDialog* fromHost(ADMDialogRef dialog) noexcept;
    static ADMErr initProc(ADMDialogRef dialog, void* self) noexcept;
    ADMErr begin(ADMDialogRef dialog) noexcept;
    void fail(std::exception_ptr failure) noexcept;
    void rethrow();

    ADMDialogRef dialog_ = nullptr;
    ADMErr initError_ = kNoErr;
    std::exception_ptr failure_;
};
