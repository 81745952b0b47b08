// SPDX-License-Identifier: MIT
// The plug-in's record of one font: what the document names, what the font manager reported, and
// what the plug-in has learned about it.
#pragma once

#include "misc/threads/smartpointer.h"
#include "protocol.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace GLY {

/// Shared between the survey, the exchanges and the dialogs, always through
/// Orvil::SmartPointer<GLYFontInfo>: one record is one object, whatever lists hold it.
/// Throws: nothing of its own. Threads: the main thread.
class GLYFontInfo : public Orvil::SmartPointable {
public:
    /// The type of a protocol keyword by exact comparison; Protocol::Font::all (4, unknown) for any
    /// other text, the empty one included.
    static Protocol::Font::Type typeStringToEnum(std::string_view keyword);

    GLYFontInfo();
    GLYFontInfo(const GLYFontInfo&) = default;
    GLYFontInfo& operator=(const GLYFontInfo&) = default;
    ~GLYFontInfo() override;

    /// The protocol's keyword of the type; empty when it is not known.
    std::string getTypeString() const;
    /// The name of the technology for display; "Unknown" when it is not known.
    std::string getTechnology() const;

    /// Orders ascending by family name, byte by byte, despite its name. Records of one family are
    /// equivalent: a set keeps the first of them.
    struct SDescendingInfoSort {
        bool operator()(const Orvil::SmartPointer<GLYFontInfo>& left,
                        const Orvil::SmartPointer<GLYFontInfo>& right) const {
            return left->font.familyName < right->font.familyName;
        }
    };

    Protocol::Font font;
    /// The host's fourth name of the font.
    std::string hostName;
    /// The container that the user chose, a decimal number; "-1" or empty: none. Used in requests
    /// instead of font.containerID when it reads as a number of at least 1.
    std::string chosenContainer;
    /// Free for the survey and the dialogs, like the other work values.
    std::int32_t workValue1 = 1;
    /// 1 once the user has chosen a replacement for the font.
    std::int32_t replaced = 0;
    /// 1 when the font manager reported at least one matching font.
    std::int32_t installed = 0;
    std::int32_t workValue2 = 0;
    std::int32_t workValue3 = 0;
};

} // namespace GLY
