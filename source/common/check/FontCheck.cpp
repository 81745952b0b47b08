// SPDX-License-Identifier: MIT
// The font check: what happens when a document was opened.
#include "GLYController.h"
#include "GLYEvent.h"
#include "GLYLanguageMgr.h"
#include "GLYNotifyHandler.h"
#include "GlyphoraDialog.h"
#include "GlyphoraPlugin.h"
#include "VexFontSuite.h"
#include "suitepointers.h"

namespace {

constexpr std::int32_t cannotLaunchText = 3;
constexpr std::int32_t badVersionText = 4;
constexpr std::int32_t missingFontsLayout = 16000;
constexpr unsigned neededProtocolMajor = 2;
constexpr unsigned neededProtocolMinor = 0;

void alert(std::int32_t textIndex) {
    sADMBasic->MessageAlert(GLYLanguageMgr::getLanguageMgr()->getString(textIndex).c_str());
}

/// Whether the user is to decide about what is still missing.
bool needsDialog(const GLY::GLYFontRequestEvent& request, const VexFontSuite::FontInfos& fonts) {
    return request.succeeded != 0 && VexFontSuite::getNumMissingFonts(fonts) > 0 &&
           (request.showWindow != 0 || VexFontSuite::getNumFontsNotInstalled(fonts) > 0);
}

/// Library changes are listened for while it lives. When start() itself throws, what it has begun
/// stays begun until the next check.
class ListeningScope {
public:
    ListeningScope() { GLY::NotifiyHandlerFactory::getNotifyHandler(false)->start(); }
    ListeningScope(const ListeningScope&) = delete;
    ListeningScope& operator=(const ListeningScope&) = delete;
    ~ListeningScope() { GLY::NotifiyHandlerFactory::getNotifyHandler(false)->end(); }
};

} // namespace

AIErr GlyphoraPlugin::checkFonts(const AINotifierMessage* message) {
    VexFontSuite::FontInfos fonts;
    const AIErr result = VexFontSuite::getMissingFontInfos(fonts);
    if (VexFontSuite::getNumMissingFonts(fonts) == 0) {
        return result;
    }
    if (GLY::GLYController::LaunchGlyphora() != noErr) {
        alert(cannotLaunchText);
        return result;
    }
    if (GLY::GLYController::CheckRunningVersion() != 0) {
        alert(badVersionText);
        return result;
    }

    // A show request without fonts shows nothing: it is the smallest question that every manager
    // answers with its protocol version, asked before one that might be misread is sent.
    GLY::GLYFontInfoEvent info;
    info.build();
    info.send();
    if (!GLY::GLYController::checkForNeededProtocolVersion(info.replyVersion, neededProtocolMajor,
                                                           neededProtocolMinor)) {
        return kNoErr;
    }

    GLY::GLYFontRequestEvent request; // like the records, it is still there when listening ends
    {
        const ListeningScope listening;
        request = VexFontSuite::requestFonts(fonts); // the answer updates the shared records
        if (needsDialog(request, fonts)) {
            GlyphoraDialog dialog;
            dialog.setFontData(fonts);
            dialog.Modal(message->d.self, "Glyphora", missingFontsLayout, kADMModalDialogStyle, 0);
            fonts.clear();
        }
    }
    return result;
}
