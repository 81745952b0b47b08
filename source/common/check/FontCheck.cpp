// SPDX-License-Identifier: MIT
// The font check: what happens when a document was opened.
#include "GLYController.h"
#include "GLYEvent.h"
#include "GLYLanguageMgr.h"
#include "GLYNotifyHandler.h"
#include "GlyphoraPlugin.h"
#include "VexFontSuite.h"
#include "suitepointers.h"

#include <utility>

namespace {

constexpr std::int32_t cannotLaunchText = 3;
constexpr std::int32_t badVersionText = 4;
constexpr unsigned neededProtocolMajor = 2;
constexpr unsigned neededProtocolMinor = 0;

void alert(std::int32_t textIndex) {
    sADMBasic->MessageAlert(GLYLanguageMgr::getLanguageMgr()->getString(textIndex).c_str());
}

/// Library changes are listened for from its making to end(), or until an exception destroys it.
/// When start() itself throws, what it has begun stays begun until the next check.
class ListeningScope {
public:
    ListeningScope() { GLY::NotifiyHandlerFactory::getNotifyHandler(false)->start(); }
    ListeningScope(const ListeningScope&) = delete;
    ListeningScope& operator=(const ListeningScope&) = delete;
    ~ListeningScope() { end(); }

    void end() {
        if (std::exchange(listening_, false)) {
            GLY::NotifiyHandlerFactory::getNotifyHandler(false)->end();
        }
    }

private:
    bool listening_ = true;
};

} // namespace

AIErr GlyphoraPlugin::checkFonts() {
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

    GLY::GLYFontInfoEvent info;
    info.build();
    info.send();
    if (!GLY::GLYController::checkForNeededProtocolVersion(info.replyVersion, neededProtocolMajor,
                                                           neededProtocolMinor)) {
        return kNoErr;
    }

    ListeningScope listening;
    // The answer updates the records that the request shares with `fonts`.
    const GLY::GLYFontRequestEvent request = VexFontSuite::requestFonts(fonts);
    listening.end(); // before the exchanges and the records go
    return result;
}
