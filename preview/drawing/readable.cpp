// SPDX-License-Identifier: MIT
#include "preview/drawing/readable.h"

#include <fribidi.h>

#include <cstddef>
#include <utility>

namespace preview {

namespace {

enum class Kind { Letter, Other, Unfit };

/// Whether a character shows what a design is like when it stands by itself.
Kind kindOf(FT_ULong character) {
    switch (hb_unicode_general_category(hb_unicode_funcs_get_default(),
                                        static_cast<hb_codepoint_t>(character))) {
    case HB_UNICODE_GENERAL_CATEGORY_UPPERCASE_LETTER:
    case HB_UNICODE_GENERAL_CATEGORY_LOWERCASE_LETTER:
    case HB_UNICODE_GENERAL_CATEGORY_TITLECASE_LETTER:
    case HB_UNICODE_GENERAL_CATEGORY_OTHER_LETTER:
        return Kind::Letter;
    case HB_UNICODE_GENERAL_CATEGORY_DECIMAL_NUMBER:
    case HB_UNICODE_GENERAL_CATEGORY_LETTER_NUMBER:
    case HB_UNICODE_GENERAL_CATEGORY_OTHER_NUMBER:
    case HB_UNICODE_GENERAL_CATEGORY_CURRENCY_SYMBOL:
    case HB_UNICODE_GENERAL_CATEGORY_MATH_SYMBOL:
    case HB_UNICODE_GENERAL_CATEGORY_OTHER_SYMBOL:
    case HB_UNICODE_GENERAL_CATEGORY_OTHER_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_PRIVATE_USE:
        return Kind::Other;
    default:
        return Kind::Unfit;
    }
}

std::string toUtf8(const std::u32string& text) {
    constexpr std::size_t longest = 4; // bytes of a character
    const std::vector<FriBidiChar> characters(text.begin(), text.end());
    std::string bytes(longest * text.size() + 1, '\0');
    const FriBidiStrIndex length =
        fribidi_unicode_to_charset(FRIBIDI_CHAR_SET_UTF8, characters.data(),
                                   static_cast<FriBidiStrIndex>(text.size()), bytes.data());
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

/// The first letters that the face has; other characters where it has hardly any.
std::string ownText(const Face& face) {
    constexpr std::size_t most = 12;
    constexpr std::size_t fewLetters = 4;
    std::u32string letters;
    std::u32string others;
    FT_UInt glyph = 0;
    for (FT_ULong character = FT_Get_First_Char(face.freetype(), &glyph);
         glyph != 0 && letters.size() < most;
         character = FT_Get_Next_Char(face.freetype(), character, &glyph)) {
        const Kind kind = kindOf(character);
        if (kind == Kind::Letter) {
            letters += static_cast<char32_t>(character);
        } else if (kind == Kind::Other && others.size() < most) {
            others += static_cast<char32_t>(character);
        }
    }
    return toUtf8(letters.size() < fewLetters && others.size() > letters.size() ? others : letters);
}

} // namespace

ReadableLine readable(const Face& face, const Request& request) {
    ReadableLine first{request.text, shape(face, request)};
    if (first.line.missing.empty()) {
        return first;
    }
    Request instead = request;
    const auto shapeInstead = [&](std::string text) {
        instead.text = std::move(text);
        return shape(face, instead);
    };
    for (const std::string& text : request.others) {
        ShapedLine line = shapeInstead(text);
        if (line.missing.empty()) {
            line.missing = std::move(first.line.missing);
            return {text, std::move(line)};
        }
    }
    if (const std::string own = request.orOwn ? ownText(face) : ""; !own.empty()) {
        ShapedLine line = shapeInstead(own);
        line.missing = std::move(first.line.missing);
        return {own, std::move(line)};
    }
    return first;
}

} // namespace preview
