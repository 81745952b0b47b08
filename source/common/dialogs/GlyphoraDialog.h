// SPDX-License-Identifier: MIT
// The dialog that lists the fonts that a document misses, with what can be done about each.
#pragma once

#include "GLYEvent.h"
#include "GLYNotifyHandler.h"
#include "GlyphoraReplaceDialog.h"
#include "VexFontSuite.h"
#include "adm/BaseADMDialog.h"
#include "fontrows.h"
#include "newsforwarder.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

/// Give it the fonts, then run it by Modal(). It asks the font manager again whenever that has news
/// of its library, and closes by itself, with the chosen replacements made, once nothing is
/// missing. Throws ai::Error when the host refuses a call that it cannot do without; what the font
/// manager's answers and the replacements make it throw comes out of Modal(), too. [main-thread],
/// with the suites acquired.
class GlyphoraDialog : public BaseADMDialog, public GLY::IGLYChangeNotifier {
public:
    GlyphoraDialog() = default;
    GlyphoraDialog(const GlyphoraDialog&) = delete;
    GlyphoraDialog& operator=(const GlyphoraDialog&) = delete;
    ~GlyphoraDialog() override;

    /// The records are shared with the caller, and take what the font manager reports.
    void setFontData(const VexFontSuite::FontInfos& fonts);

    ADMErr Create(SPPluginRef plugin, const char* name, std::int32_t layoutID, std::int32_t style,
                  std::int32_t options) override;
    /// Gives up the news, and the rows with what they own.
    void Destroy() override;

    /// Asks the font manager again, and shows what it says. Returns 0. What goes wrong ends the
    /// dialog and comes out of Modal().
    std::int32_t OnGLYNotify(const std::string& text) override;

    /// Makes the rows anew from the records; what was open and selected is so again. If none is
    /// missing, it also makes the replacements, pauses, and ends the dialog. Throws what
    /// processReplacements() throws.
    void synchronizeDialog();
    /// Texts and enabling of all other items, by what is selected.
    void updateFontList();
    /// Throws the host's error (std::int32_t) when it does not have the font that is to replace
    /// another, and ATE::Exception.
    void processReplacements();
    /// Asks the font manager whether the dialog is to be shown: if not, it runs unattended, out of
    /// sight and for 15 s at most. Counts before Init() only. Throws Orvil::Exception when a font
    /// of the answer cannot be read.
    void InitFonts();

    /// Breaks `text` into lines no wider than `width` as the entry's row would draw them; `height`
    /// is that of all lines.
    static std::vector<std::string>
    breakStringAtWidth(ADMListEntryRef entry, const std::string& text, float width, float& height);

protected:
    ADMErr Init() override;
    void Notify(ADMNotifierRef notifier) override;

private:
    using Rows = std::vector<const UserDataContainer*>;

    /// [main-thread] Routines for the host; `entry` is in the dialog's list. What they throw ends
    /// the dialog.
    static AIBoolean FontListTracker(ADMListEntryRef entry, ADMTrackerRef tracker);
    static void mydrawProc(ADMListEntryRef entry, ADMDrawerRef drawer);
    static AIBoolean refreshTimerProc(ADMDialogRef dialog, ADMTimerRef timer);
    static void refreshTimerAbortProc(ADMDialogRef /*dialog*/, ADMTimerRef /*timer*/) {}
    static AIBoolean timeoutProc(ADMDialogRef dialog, ADMTimerRef timer);
    static void timeoutAbortProc(ADMDialogRef /*dialog*/, ADMTimerRef /*timer*/) {}
    static void notifyProc(ADMDialogRef /*dialog*/, ADMNotifierRef /*notifier*/) {}

    ADMHierarchyListRef fontList() const noexcept;
    Rows selectedRows() const;
    void insertFontRow(std::int32_t index, const Orvil::SmartPointer<GLY::GLYFontInfo>& info,
                       const RowStates& before);
    /// `before` may be null.
    void insertCandidateRows(ADMListEntryRef fontEntry,
                             const Orvil::SmartPointer<GLY::GLYFontInfo>& info,
                             const RowState* before);
    void prepareList();
    void layOutList();
    void runUnattended();
    void startTimer(std::int32_t milliseconds, ADMTimerProc proc, ADMTimerAbortProc abort);
    GLY::GLYFontRequestEvent requestFonts() const;

    bool actOn(std::int32_t itemID);
    bool sendAndSynchronize(std::unique_ptr<GLY::GLYFontBasedEvent> event);
    std::unique_ptr<GLY::GLYFontBasedEvent> showEvent() const;
    std::unique_ptr<GLY::GLYFontBasedEvent> buyEvent() const;
    std::unique_ptr<GLY::GLYFontBasedEvent> activateEvent() const;
    void chooseReplacement();

    VexFontSuite::FontInfos fonts_;
    std::map<std::string, std::string> replacements_; ///< PostScript name to chosen font's name
    std::unique_ptr<GlyphoraReplaceDialog> replaceDialog_;
    SPPluginRef pluginRef_ = nullptr;
    std::int32_t stayOpen_ = 1;     ///< 0: runs unattended
    bool isClosing_ = false;        ///< by itself
    NewsForwarder* news_ = nullptr; ///< the module's
};
