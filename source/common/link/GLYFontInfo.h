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

/// Shared between the survey and the exchanges, always through Orvil::SmartPointer<GLYFontInfo>:
/// one record is one object, whatever lists hold it. Throws nothing of its own. [main-thread]
class GLYFontInfo : public Orvil::SmartPointable {
public:
    /// The type that a protocol keyword stands for, by exact comparison. Any other text, the empty
    /// one included, gives Protocol::Font::all (4): the type is not known.
    [[nodiscard]] static Protocol::Font::Type typeStringToEnum(std::string_view keyword);

    GLYFontInfo();
    GLYFontInfo(const GLYFontInfo&) = default;
    GLYFontInfo& operator=(const GLYFontInfo&) = default;
    ~GLYFontInfo() override;

    /// The protocol's keyword for the type; empty if it is not known.
    [[nodiscard]] std::string getTypeString() const;
    /// The name of the technology, for display; "Unknown" if the type is not known.
    [[nodiscard]] std::string getTechnology() const;

    /// Orders by family name, byte by byte; ascending, despite its name. Records of one family are
    /// equivalent, so a set keeps the first of them.
    struct SDescendingInfoSort {
        bool operator()(const Orvil::SmartPointer<GLYFontInfo>& left,
                        const Orvil::SmartPointer<GLYFontInfo>& right) const {
            return left->font.familyName < right->font.familyName;
        }
    };

    Protocol::Font font;
    /// The name that the host shows to users: the face's full name.
    std::string hostName;
    /// The container that the user chose, a decimal number; "-1" or empty if none. Requests name it
    /// instead of font.containerID if it reads as a number of at least 1.
    std::string chosenContainer;
    /// A scratch value, like the two at the end.
    std::int32_t workValue1 = 1;
    /// 1 once the user has chosen a replacement for the font.
    std::int32_t replaced = 0;
    /// 1 if the font manager reported at least one matching font.
    std::int32_t installed = 0;
    std::int32_t workValue2 = 0;
    std::int32_t workValue3 = 0;
};

} // namespace GLY
