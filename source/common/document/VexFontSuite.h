// SPDX-License-Identifier: MIT
// The fonts of the current document: finding them, counting them by state, asking the font manager
// for the missing ones, and replacing one by another.
#pragma once

#include "GLYEvent.h"
#include "GLYFontInfo.h"
#include "misc/threads/smartpointer.h"
#include "sp/types.h"

#include <cstdint>
#include <string>
#include <vector>

/// Static operations without a state of their own. Only text frames that are direct children of a
/// layer's top group are seen; text inside nested groups is not. Throws ATE::Exception when the
/// text engine, or the way to it, fails. [main-thread], with the suites acquired.
class VexFontSuite {
public:
    using FontInfos = std::vector<Orvil::SmartPointer<GLY::GLYFontInfo>>;

    VexFontSuite() = delete;

    /// Appends a record for every family that the document uses, made of its first font, and sorts
    /// all of `fonts` by family. Returns the host's error. If an art object could not be
    /// read, `fonts` is left alone; if a layer could not, it has what the layers before it use.
    [[nodiscard]] static AIErr getMissingFontInfos(FontInfos& fonts);

    /// How many records the host has no font for.
    [[nodiscard]] static std::int32_t getNumMissingFonts(FontInfos fonts);
    /// How many records the font manager has reported no font for.
    [[nodiscard]] static std::int32_t getNumFontsNotInstalled(FontInfos fonts);

    /// Launches the font manager if need be, and asks it for the missing ones of `fonts`, even if
    /// there are none. The records, which the exchange shares, take the answer. Returns the
    /// finished exchange. Throws Orvil::Exception, too, when a font of the answer cannot be read.
    [[nodiscard]] static GLY::GLYFontRequestEvent requestFonts(const FontInfos& fonts);

    /// Sets the font `newName` on every run that uses the font with the PostScript name
    /// `oldPsName`. Throws the host's error (std::int32_t) when it does not find the new font; runs
    /// that were changed before stay changed.
    static void replaceFontWithFont(std::string oldPsName, std::string newName);
};
