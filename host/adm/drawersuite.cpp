// SPDX-License-Identifier: MIT
// The suite by which draw routines draw.
#include "host/adm/admsuites.h"
#include "host/adm/suitebodies.h"
#include "host/documents/utf8.h"

#include <string>
#include <string_view>

namespace host {

namespace {

/// Half of a pair alone becomes U+FFFD.
std::string toUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t code = text[i];
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10U) + (text[++i] - 0xDC00U);
        }
        appendUtf8(result, code);
    }
    return result;
}

template <typename Work>
SPErr draw(Dialogs& dialogs, ADMDrawerRef ref, Work work) {
    return with(dialogs, ref, [&](const Drawer& drawer) {
        if (drawer.canvas != nullptr) {
            work(*drawer.canvas, drawer.color);
        }
    });
}

SPErr getBounds(Dialogs& dialogs, ADMDrawerRef ref, ADMRect* bounds) {
    return getMember<&Drawer::bounds>(dialogs, ref, bounds);
}

SPErr setAdmColor(Dialogs& dialogs, ADMDrawerRef ref, ADMColor color) {
    if (color < kADMTextColor || color > kADMHighlightColor) {
        return kBadParameterErr;
    }
    return setMember<&Drawer::color>(dialogs, ref, color);
}

SPErr fillRect(Dialogs& dialogs, ADMDrawerRef ref, const ADMRect* rect) {
    return draw(dialogs, ref,
                [&](Canvas& canvas, const Color& color) { canvas.fill(color, *rect); });
}

SPErr drawLine(Dialogs& dialogs, ADMDrawerRef ref, const ADMPoint* from, const ADMPoint* to) {
    return draw(dialogs, ref,
                [&](Canvas& canvas, const Color& color) { canvas.line(color, *from, *to); });
}

SPErr drawText(Dialogs& dialogs, ADMDrawerRef ref, const char* text, const ADMPoint* point) {
    return draw(dialogs, ref,
                [&](Canvas& canvas, const Color& color) { canvas.text(color, text, *point); });
}

SPErr drawTextUtf16(Dialogs& dialogs, ADMDrawerRef ref, const char16_t* text, std::int32_t length,
                    const ADMPoint* point) {
    if (length < 0) {
        return kBadParameterErr;
    }
    return draw(dialogs, ref, [&](Canvas& canvas, const Color& color) {
        canvas.text(color, toUtf8({text, static_cast<std::size_t>(length)}), *point);
    });
}

SPErr getTextWidth(Dialogs& dialogs, ADMDrawerRef ref, const char* text, std::int32_t length,
                   std::int32_t* width) {
    if (length < 0) {
        return kBadParameterErr;
    }
    return with(dialogs, ref, [&](const Drawer&) {
        *width = dialogs.metrics().width({text, static_cast<std::size_t>(length)});
    });
}

SPErr getLineHeight(Dialogs& dialogs, ADMDrawerRef ref, std::int32_t* height) {
    return with(dialogs, ref, [&](const Drawer&) { *height = dialogs.metrics().lineHeight(); });
}

SPErr drawResPicture(Dialogs& dialogs, ADMDrawerRef ref, std::int32_t pictureID,
                     const ADMPoint* point) {
    return with(dialogs, ref, [&](const Drawer& drawer) {
        return drawer.canvas == nullptr || drawer.canvas->picture(pictureID, *point)
                   ? kNoErr
                   : kBadParameterErr;
    });
}

template <CallName name, auto body>
constexpr auto inDrawer = Entry<ADMDrawerSuite, name, body>::call;

constexpr ADMDrawerSuite drawerTable{
    inDrawer<"GetBoundsRect", getBounds>,
    inDrawer<"SetADMColor", setAdmColor>,
    inDrawer<"SetRGBColor", setMember<&Drawer::color, ADMDrawerRef, std::uint32_t>>,
    inDrawer<"FillRect", fillRect>,
    inDrawer<"DrawLine", drawLine>,
    inDrawer<"DrawText", drawText>,
    inDrawer<"DrawTextUTF16", drawTextUtf16>,
    inDrawer<"GetTextWidth", getTextWidth>,
    inDrawer<"GetLineHeight", getLineHeight>,
    inDrawer<"DrawResPicture", drawResPicture>,
};

} // namespace

void provideDrawerSuite(SuiteRegistry& suites) {
    suites.provide(drawerTable);
}

} // namespace host
