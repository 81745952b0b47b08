// SPDX-License-Identifier: MIT
// The fonts of the current document: surveying them, counting them by state, asking the font
// manager for the missing ones, and replacing one by another.
#pragma once

#include "GLYEvent.h"
#include "GLYFontInfo.h"
#include "misc/threads/smartpointer.h"
#include "sp/types.h"

#include <cstdint>
#include <string>
#include <vector>

/// Static operations without a state of their own. Only text frames that are direct children of a
/// layer's top group are seen; text inside nested groups is not. Main thread, suites acquired.
/// Throws: ATE::Exception where the text engine, or the way to it, fails.
class VexFontSuite {
public:
    using FontInfos = std::vector<Orvil::SmartPointer<GLY::GLYFontInfo>>;

    VexFontSuite() = delete;

    /// Appends a record for the first font met of every family that the document uses, and sorts
    /// all of `fonts` by family. Returns the host's error. One of reading an art object leaves
    /// `fonts` untouched; one of reading a layer delivers what the layers before it use.
    static AIErr getMissingFontInfos(FontInfos& fonts);

    /// How many records the host has no font for.
    static std::int32_t getNumMissingFonts(FontInfos fonts);
    /// How many records the font manager has reported no font for.
    static std::int32_t getNumFontsNotInstalled(FontInfos fonts);

    /// Launches the font manager if need be, and asks it for the missing ones of `fonts`; the
    /// records take up the answer. Also asks when none is missing. Returns the finished exchange.
    /// Throws Orvil::Exception, too, for a font element of the answer that cannot be read.
    static GLY::GLYFontRequestEvent requestFonts(const FontInfos& fonts);

    /// Sets the font `newName` on every run whose font has the PostScript name `oldPsName`. Throws
    /// the host's error (std::int32_t) when it cannot find the new font; runs changed before stay
    /// changed.
    static void replaceFontWithFont(std::string oldPsName, std::string newName);
};
