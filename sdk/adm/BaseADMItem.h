// SPDX-License-Identifier: MIT
// An item of a dialog as a class.
#pragma once

#include "adm/types.h"

#include <string>

class BaseADMDialog;

/// One item, for as long as its dialog lives; the methods throw ai::Error when a suite call fails.
/// An item of a BaseADMDialog may also be attached: the host's callbacks become virtual operations,
/// and what they throw goes the way of what the dialog's throw. [main-thread], with the suites
/// acquired.
class BaseADMItem {
public:
    /// Throws ai::Error, too, when the dialog has no such item.
    BaseADMItem(const BaseADMDialog& dialog, std::int32_t itemID);
    explicit BaseADMItem(ADMItemRef item) noexcept : item_(item) {}
    BaseADMItem(const BaseADMItem&) = delete;
    BaseADMItem& operator=(const BaseADMItem&) = delete;
    /// One that was attached must outlive its dialog.
    virtual ~BaseADMItem() = default;

    /// Routes the callbacks to this object, and calls Init().
    void Attach();

    ADMItemRef GetItemRef() const noexcept { return item_; }
    [[nodiscard]] std::int32_t GetID() const;
    /// In the dialog's coordinates.
    [[nodiscard]] ADMRect GetBoundsRect() const;
    void Enable(bool enabled);
    void SetText(const std::string& utf8);
    void SetItemStyle(std::int32_t style);
    void Invalidate();

protected:
    virtual void Init() {}
    /// The base does what the host does: the notifier goes on to the dialog.
    virtual void Notify(ADMNotifierRef notifier);
    virtual void Draw(ADMDrawerRef drawer);
    /// Whether the mouse was dealt with.
    virtual bool Track(ADMTrackerRef tracker);

private:
    ADMItemRef item_;
};
