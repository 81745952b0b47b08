// SPDX-License-Identifier: MIT
// The missing-fonts dialog from its opening to its end, and what its buttons do.
#include "GlyphoraDialog.h"

#include "GLYController.h"
#include "adm/BaseADMItem.h"
#include "ai/unicodestring.h"
#include "platform/threads.h"
#include "suitepointers.h"

#include <array>
#include <utility>

namespace {

constexpr std::int32_t refreshInterval = 500;     ///< ms
constexpr std::int32_t unattendedTimeout = 15000; ///< ms
constexpr ADMRect outOfSight{-500, -500, 0, 0};
constexpr std::int32_t replaceLayout = 17001;

class CriticalSection {
public:
    CriticalSection() { ThreadBeginCritical(); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection() {
        if (!staysOpen_) {
            ThreadEndCritical();
        }
    }
    void leaveOpen() noexcept { staysOpen_ = true; }

private:
    bool staysOpen_ = false;
};

} // namespace

GlyphoraDialog::~GlyphoraDialog() {
    GlyphoraDialog::Destroy();
}

void GlyphoraDialog::setFontData(const VexFontSuite::FontInfos& fonts) {
    fonts_ = fonts;
}

ADMErr GlyphoraDialog::Create(SPPluginRef plugin, const char* name, std::int32_t layoutID,
                              std::int32_t style, std::int32_t options) {
    pluginRef_ = plugin;
    isClosing_ = false;
    return BaseADMDialog::Create(plugin, name, layoutID, style, options);
}

void GlyphoraDialog::Destroy() {
    if (news_ != nullptr) {
        std::exchange(news_, nullptr)->forget();
    }
    if (GetDialogRef() != nullptr) {
        emptyFontList(fontList());
    }
    BaseADMDialog::Destroy();
}

ADMErr GlyphoraDialog::Init() {
    prepareList();
    const ADMErr error = BaseADMDialog::Init();
    layOutList();
    synchronizeDialog();
    for (const std::int32_t button : {showButton, replaceButton, buyButton}) {
        BaseADMItem(*this, button).Enable(false);
    }
    replaceDialog_ = std::make_unique<GlyphoraReplaceDialog>();
    if (stayOpen_ == 0) {
        runUnattended();
    }
    news_ = NewsForwarder::forwardTo(*this);
    startTimer(refreshInterval, refreshTimerProc, refreshTimerAbortProc);
    static_cast<void>(requestFonts()); // shown when the list is made next
    return error;
}

void GlyphoraDialog::runUnattended() {
    sADMDialog->Show(GetDialogRef(), 0);
    sADMDialog->ForceOnScreen(GetDialogRef(), 0);
    sADMDialog->SetBoundsRect(GetDialogRef(), &outOfSight);
    startTimer(unattendedTimeout, timeoutProc, timeoutAbortProc);
    sADMDialog->SetNotifyProc(GetDialogRef(), notifyProc);
}

void GlyphoraDialog::startTimer(std::int32_t milliseconds, ADMTimerProc proc,
                                ADMTimerAbortProc abort) {
    ADMTimerRef timer = nullptr; // ends by its result, or with the dialog
    const ADMErr error = sADMDialog->CreateTimer(GetDialogRef(), milliseconds, proc, abort, &timer);
    if (error != kNoErr) {
        throw ai::Error(error);
    }
}

AIBoolean GlyphoraDialog::refreshTimerProc(ADMDialogRef dialog, ADMTimerRef /*timer*/) {
    return guard(dialog, AIBoolean{0}, [](BaseADMDialog& /*dialog*/) {
        GLY::NotifiyHandlerFactory::getNotifyHandler(false)->push();
        return AIBoolean{1};
    });
}

AIBoolean GlyphoraDialog::timeoutProc(ADMDialogRef dialog, ADMTimerRef /*timer*/) {
    return guard(dialog, AIBoolean{0}, [](BaseADMDialog& self) {
        self.EndModal(kADMOKItemID, false);
        return AIBoolean{0};
    });
}

GLY::GLYFontRequestEvent GlyphoraDialog::requestFonts() const {
    GLY::GLYFontRequestEvent request;
    request.fonts = fonts_; // those that are there, too: one may have gone meanwhile
    request.build();
    request.send();
    return request;
}

std::int32_t GlyphoraDialog::OnGLYNotify(const std::string& /*text*/) {
    return guard(GetDialogRef(), std::int32_t{0}, [this](BaseADMDialog& /*dialog*/) {
        static_cast<void>(requestFonts());
        synchronizeDialog();
        return std::int32_t{0};
    });
}

void GlyphoraDialog::InitFonts() {
    const GLY::GLYFontRequestEvent request = requestFonts();
    if (request.succeeded != 0) {
        stayOpen_ = request.showWindow;
    }
}

void GlyphoraDialog::processReplacements() {
    for (const auto& [psName, newName] : replacements_) {
        VexFontSuite::replaceFontWithFont(psName, newName);
    }
}

void GlyphoraDialog::Notify(ADMNotifierRef notifier) {
    CriticalSection critical;
    std::array<char, 512> type{}; // whatever happened to an item, it is acted on
    sADMNotifier->GetNotifierType(notifier, type.data(), type.size());
    ADMItemRef item = nullptr;
    sADMNotifier->GetItem(notifier, &item);
    if (item != nullptr && !actOn(BaseADMItem(item).GetID())) {
        critical.leaveOpen();
        return;
    }
    BaseADMDialog::Notify(notifier);
}

/// False when the font manager's version will not do.
bool GlyphoraDialog::actOn(std::int32_t itemID) {
    switch (itemID) {
    case kADMOKItemID:
        processReplacements();
        return true;
    case showButton:
        return sendAndSynchronize(showEvent());
    case buyButton:
        return sendAndSynchronize(buyEvent());
    case activateButton:
        return sendAndSynchronize(activateEvent());
    case replaceButton:
        chooseReplacement();
        return true;
    case fontListItem:
        updateFontList();
        return true;
    default:
        return true;
    }
}

bool GlyphoraDialog::sendAndSynchronize(std::unique_ptr<GLY::GLYFontBasedEvent> event) {
    GLY::GLYController::LaunchGlyphora();
    if (GLY::GLYController::CheckRunningVersion() != 0) {
        EndModal(kADMOKItemID, false);
        // Never gets here, as no version is refused; if it did, the event would stay.
        static_cast<void>(event.release());
        return false; // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
    }
    event->build();
    event->send();
    event.reset();
    synchronizeDialog();
    return true;
}

std::unique_ptr<GLY::GLYFontBasedEvent> GlyphoraDialog::showEvent() const {
    auto event = std::make_unique<GLY::GLYFontInfoEvent>();
    for (const UserDataContainer* const row : selectedRows()) {
        row->info->chosenContainer = containerToShow(*row);
        event->fonts.push_back(row->info);
    }
    return event;
}

std::unique_ptr<GLY::GLYFontBasedEvent> GlyphoraDialog::buyEvent() const {
    auto event = std::make_unique<GLY::GLYFontBuyEvent>();
    ADMListEntryRef entry = nullptr;
    sADMHierarchyList->GetActiveEntry(fontList(), &entry);
    const UserDataContainer* const row = entry != nullptr ? containerOf(entry) : nullptr;
    if (row != nullptr) {
        event->fonts.push_back(row->info);
    }
    return event;
}

std::unique_ptr<GLY::GLYFontBasedEvent> GlyphoraDialog::activateEvent() const {
    auto event = std::make_unique<GLY::GLYFontActivateEvent>();
    const auto add = [&event](const Orvil::SmartPointer<GLY::GLYFontInfo>& info) {
        if (!info->font.isActive && info->replaced == 0) {
            event->fonts.push_back(info);
            return true;
        }
        return false;
    };
    const Rows rows = selectedRows();
    for (const UserDataContainer* const row : rows) {
        row->info->chosenContainer = row->text;
        add(row->info);
    }
    if (rows.empty()) {
        for (const auto& info : fonts_) {
            if (add(info)) {
                info->chosenContainer = anyContainer;
            }
        }
    }
    return event;
}

/// All selected fonts get the same. A cancelled run yields what was chosen in an earlier one.
void GlyphoraDialog::chooseReplacement() {
    replaceDialog_->Modal(pluginRef_, "Glyphora Dialog", replaceLayout, kADMModalDialogStyle, 0);
    std::string name;
    if (replaceDialog_->getSelectedFont(name) == 0) {
        for (const UserDataContainer* const row : selectedRows()) {
            replacements_[row->info->font.psName] = name;
            row->info->replaced = 1;
        }
    }
    synchronizeDialog();
}
