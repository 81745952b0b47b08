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

/// Static operations without any state. [main-thread], which launching blocks.
class GLYController {
public:
    GLYController() = delete;

    /// Walks the running processes. `found` tells whether the font manager is among them; `info` is
    /// written only then. Returns noErr if it was found, else the status that ended the walk.
    static OSStatus FindGlyphoraProcess(ProcessInfoRec& info, bool& found);

    /// Starts the font manager through one launcher and waits up to 15 s for its process. It is not
    /// an error if that has not appeared by then, or was running already. Returns the status of
    /// the look-up or of the launch.
    static OSStatus LaunchGlyphora(std::string bundleId);
    /// Tries the launchers in turn until one gives noErr. Returns the last status.
    static OSStatus LaunchGlyphora();

    /// Returns 1, 0 or -1. The longer text is the greater; texts of one length compare byte by
    /// byte, so "9.99" is greater than "10.0".
    [[nodiscard]] static int CompareGLYVersion(std::string a, std::string b);

    /// Reads "MAJOR[.MINOR[.anything]]". Returns false if a piece is missing or not a number.
    /// Without a minor piece, `minor` keeps its value.
    [[nodiscard]] static bool separateVersion(const std::string& text, unsigned& major,
                                              unsigned& minor);

    /// Whether `text` is a version whose major AND minor numbers reach the needed ones. The minor
    /// number counts even if the major number is higher: 3.0 does not satisfy a need of 2.5. That
    /// is kept on purpose.
    [[nodiscard]] static bool checkForNeededProtocolVersion(const std::string& text,
                                                            unsigned needMajor, unsigned needMinor);

    /// The error code for a font manager of an unsuitable version. Always 0: the protocol's version
    /// decides instead.
    [[nodiscard]] static int CheckRunningVersion();
};

/// Whether buying fonts is offered: always. [any-thread]
[[nodiscard]] bool isStoreEnabled();

} // namespace GLY
