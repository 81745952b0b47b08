// SPDX-License-Identifier: MIT
// The suite by which a draw routine draws. What is said of calls and errors in dialogsuites.h holds
// here, too.
#pragma once

#include "adm/types.h"

/// "ADM Drawer Suite" 7. Coordinates are relative to what is drawn: a row, an item, a dialog.
/// Texts are drawn from their left end, with their upper edge at the point.
struct ADMDrawerSuite {
    /// [main-thread] The area to draw in.
    ADMErr (*GetBoundsRect)(ADMDrawerRef drawer, ADMRect* bounds);
    /// [main-thread] Sets the colour of what follows to one of the desktop's. It is the text's at
    /// first. kBadParameterErr: there is no such colour.
    ADMErr (*SetADMColor)(ADMDrawerRef drawer, ADMColor color);
    /// [main-thread] The same to any colour: red, green, blue, and opacity, a byte each, from the
    /// highest byte down. The host may vary it for a good contrast with the background.
    ADMErr (*SetRGBColor)(ADMDrawerRef drawer, std::uint32_t color);
    ADMErr (*FillRect)(ADMDrawerRef drawer, const ADMRect* rect); ///< [main-thread]
    /// [main-thread] Draws a line one pixel wide, ends included.
    ADMErr (*DrawLine)(ADMDrawerRef drawer, const ADMPoint* from, const ADMPoint* to);
    /// [main-thread]
    ADMErr (*DrawText)(ADMDrawerRef drawer, const char* text, const ADMPoint* point);
    /// [main-thread] The same in UTF-16, of `length` units.
    ADMErr (*DrawTextUTF16)(ADMDrawerRef drawer, const char16_t* text, std::int32_t length,
                            const ADMPoint* point);
    /// [main-thread] How wide `length` bytes of UTF-8 would be, in pixels.
    ADMErr (*GetTextWidth)(ADMDrawerRef drawer, const char* text, std::int32_t length,
                           std::int32_t* width);
    /// [main-thread] The distance from one line of text to the next, in pixels.
    ADMErr (*GetLineHeight)(ADMDrawerRef drawer, std::int32_t* height);
    /// [main-thread] Draws a picture of the host's or of the plug-in's resources, with its upper
    /// left corner at the point. kBadParameterErr: there is no such picture.
    ADMErr (*DrawResPicture)(ADMDrawerRef drawer, std::int32_t pictureID, const ADMPoint* point);
};
static_assert(isSuiteTable<ADMDrawerSuite, 10>);
