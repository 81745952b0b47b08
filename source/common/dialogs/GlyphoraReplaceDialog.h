// SPDX-License-Identifier: MIT
// The dialog in which the user chooses a font of the host's as a replacement.
#pragma once

#include "adm/BaseADMDialog.h"

#include <string>

/// Run it by Modal(), as often as needed. Throws ai::Error when the host refuses a call that it
/// cannot do without. [main-thread], with the suites acquired.
class GlyphoraReplaceDialog : public BaseADMDialog {
public:
    /// Returns 0 and the name of the font that was chosen last, as the host shows it to users; it
    /// stays chosen when a later run is cancelled. Returns 1 and leaves `name` alone if there is
    /// none.
    [[nodiscard]] std::int32_t getSelectedFont(std::string& name) const;

protected:
    ADMErr Init() override;
    void Notify(ADMNotifierRef notifier) override;

private:
    std::string selectedFont_;
};
