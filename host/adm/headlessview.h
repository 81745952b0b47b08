// SPDX-License-Identifier: MIT
// Dialogs without a screen.
#pragma once

#include "host/adm/dialogs.h"
#include "host/adm/dialoguser.h"

#include <cstdint>
#include <functional>

namespace host {

/// [main-thread] Measures text with fixed metrics.
class HeadlessView : public DialogView {
public:
    /// [main-thread, modal] Waits up to that many ticks for an event of the desktop, and handles
    /// those that came. Does not throw.
    using Wait = std::function<void(std::uint32_t ticks)>;

    /// `dialogs` and `user` outlive the view.
    HeadlessView(Dialogs& dialogs, DialogUser& user, Wait wait)
        : dialogs_(dialogs), user_(user), wait_(std::move(wait)) {}

    void runModal(Dialog& dialog) override;
    void endModal(Dialog& /*dialog*/) override {}
    void dialogChanged(Dialog& /*dialog*/) override {}
    void itemChanged(Item& /*item*/) override {}
    void forget(Dialog& /*dialog*/) override {}
    const TextMetrics& metrics() const override { return metrics_; }

private:
    Dialogs& dialogs_;
    DialogUser& user_;
    Wait wait_;
    FixedMetrics metrics_;
};

} // namespace host
