// SPDX-License-Identifier: MIT
// The font check: what happens when a document was opened.
#include "GLYController.h"
#include "GLYEvent.h"
#include "GLYLanguageMgr.h"
#include "GLYNotifyHandler.h"
#include "GlyphoraPlugin.h"
#include "VexFontSuite.h"
#include "suitepointers.h"

namespace {

constexpr std::int32_t kCannotLaunchText = 3;
constexpr std::int32_t kBadVersionText = 4;
constexpr unsigned kNeededProtocolMajor = 2;
constexpr unsigned kNeededProtocolMinor = 0;

void alert(std::int32_t textIndex) {
    sADMBasic->MessageAlert(GLYLanguageMgr::getLanguageMgr()->getString(textIndex).c_str());
}

/// Library changes are listened for while this lives. It ends also what start() left half done when
/// it throws: the code may be unmapped later, and no event may find its way into it then.
class ListeningScope {
public:
    ListeningScope() = default;
    ListeningScope(const ListeningScope&) = delete;
    ListeningScope& operator=(const ListeningScope&) = delete;
    ~ListeningScope() { GLY::NotifiyHandlerFactory::getNotifyHandler(false)->end(); }

    void start() { GLY::NotifiyHandlerFactory::getNotifyHandler(false)->start(); }
};

} // namespace

AIErr GlyphoraPlugin::checkFonts() {
    VexFontSuite::FontInfos fonts;
    const AIErr result = VexFontSuite::getMissingFontInfos(fonts);
    if (VexFontSuite::getNumMissingFonts(fonts) == 0) {
        return result;
    }
    if (GLY::GLYController::LaunchGlyphora() != noErr) {
        alert(kCannotLaunchText);
        return result;
    }
    if (GLY::GLYController::CheckRunningVersion() != 0) {
        alert(kBadVersionText);
        return result;
    }

    GLY::GLYFontInfoEvent info;
    info.build();
    info.send();
    if (!GLY::GLYController::checkForNeededProtocolVersion(info.replyVersion, kNeededProtocolMajor,
                                                           kNeededProtocolMinor)) {
        return kNoErr;
    }

    ListeningScope listening;
    listening.start();
    // The answer updates the records that the request shares with `fonts`.
    const GLY::GLYFontRequestEvent request = VexFontSuite::requestFonts(fonts);
    return result;
}
