// SPDX-License-Identifier: MIT
// The font manager as a process: finding it, launching it, and what its version texts mean.
#pragma once

#include "platform/processes.h"

#include <array>
#include <string>

namespace GLY {

/// The font manager's application signature; also the class of the events that it is sent.
constexpr OSType glyphoraSignature = FourCharCode("QGLY");

/// The identities of the font manager's launcher, newest first.
constexpr std::array<const char*, 3> launcherBundleIds{"org.glyphora.Glyphora.Launcher3",
                                                       "org.glyphora.Glyphora.Launcher2",
                                                       "org.glyphora.Glyphora.Launcher"};

/// Static operations only. Threads: the main thread; launching blocks it.
class GLYController {
public:
    GLYController() = delete;

    /// Walks the running processes. `found` tells whether the font manager is among them; `info` is
    /// written only then. Returns noErr when found, else the status that ended the walk.
    static OSStatus FindGlyphoraProcess(ProcessInfoRec& info, bool& found);

    /// Starts the font manager through one launcher and waits up to 15 s for its process; that it
    /// has not shown up by then is no error. noErr also when it was running already; else the
    /// status of the look-up or of the launch.
    static OSStatus LaunchGlyphora(std::string bundleId);
    /// Tries the launchers in turn until one gives noErr; the last status otherwise.
    static OSStatus LaunchGlyphora();

    /// 1, 0 or -1: a longer text is greater; texts of one length compare byte by byte. So "9.99" is
    /// greater than "10.0".
    static int CompareGLYVersion(std::string a, std::string b);

    /// Reads "MAJOR[.MINOR[.anything]]". False when a piece that is there is no number. Without a
    /// minor piece `minor` keeps its value.
    static bool separateVersion(const std::string& text, unsigned& major, unsigned& minor);

    /// Whether `text` is a version whose major AND minor numbers reach the needed ones. The minor
    /// number is compared even when the major number is higher: 3.0 does not satisfy 2.5. Callers
    /// rely on it.
    static bool checkForNeededProtocolVersion(const std::string& text, unsigned needMajor,
                                              unsigned needMinor);

    /// Whether the running font manager's version is a problem: never. Returns an error code.
    static int CheckRunningVersion();
};

/// Whether buying fonts is offered: always.
bool isStoreEnabled();

} // namespace GLY
