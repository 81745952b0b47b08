// SPDX-License-Identifier: MIT
// Start tags with very many attributes, found without parsing.
#include "misc/xml/libxmllimits.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <strings.h>

namespace Orvil::LibXml {

namespace {

/// At which libxml2 takes some tenths of a second at most, were it all one tag.
constexpr std::size_t largestUnreadable = std::size_t{64} << 10U; // bytes

enum class Encoding { LikeAscii, Utf16le, Utf16be, Other };

/// As libxml2 tells from the first bytes.
Encoding detect(std::string_view text) {
    using namespace std::string_view_literals;
    struct Signature {
        std::string_view bytes;
        Encoding encoding;
    };
    static constexpr std::array signatures = {
        Signature{"\0\0\0<"sv, Encoding::Other},
        Signature{"<\0\0\0"sv, Encoding::Other},
        Signature{"\0\0<\0"sv, Encoding::Other},
        Signature{"\0<\0\0"sv, Encoding::Other},
        Signature{"\x4C\x6F\xA7\x94"sv, Encoding::Other}, // EBCDIC
        Signature{"<\0?\0"sv, Encoding::Utf16le},
        Signature{"\0<\0?"sv, Encoding::Utf16be},
        Signature{"\xFF\xFE"sv, Encoding::Utf16le},
        Signature{"\xFE\xFF"sv, Encoding::Utf16be},
    };
    const auto* const found =
        std::find_if(signatures.begin(), signatures.end(),
                     [&](const Signature& each) { return text.starts_with(each.bytes); });
    return found == signatures.end() ? Encoding::LikeAscii : found->encoding;
}

/// The name in the XML declaration; empty without one.
std::string declaredEncoding(std::string_view text) {
    constexpr std::size_t longestMark = 3; // a byte order mark in UTF-8
    if (text.substr(0, longestMark + 5).find("<?xml") == std::string_view::npos) {
        return {};
    }
    text = text.substr(0, text.find("?>"));
    const std::size_t open = text.find_first_of("'\"", text.find("encoding"));
    if (open == std::string_view::npos) {
        return {};
    }
    return std::string(text.substr(open + 1, text.find(text[open], open + 1) - open - 1));
}

/// No byte of another character looks like a bracket, a quote or a sign of equality. That holds for
/// every encoding with one of these prefixes; many with others of "CP" and "IBM" are EBCDIC.
bool keepsAscii(const std::string& name) {
    static constexpr std::array prefixes = {
        "UTF-8",    "UTF8",        "US-ASCII",    "ASCII",       "ANSI_X3.4",   "ISO-8859-",
        "ISO8859-", "ISO_8859",    "LATIN1",      "LATIN2",      "csISOLatin",  "macintosh",
        "MAC-",     "windows-125", "windows-874", "windows-31J", "windows-936", "CP125",
        "CP437",    "CP77",        "CP85",        "CP86",        "CP874",       "CP932",
        "CP936",    "CP949",       "CP950",       "IBM437",      "IBM77",       "IBM85",
        "IBM86",    "IBM874",      "KOI8-",       "TIS-620",     "TIS620",      "EUC-",
        "UHC",      "Shift_JIS",   "SJIS",        "GB2312",      "GBK",         "GB18030",
        "Big5"};
    return name.empty() || std::any_of(prefixes.begin(), prefixes.end(), [&](const char* prefix) {
               return strncasecmp(name.c_str(), prefix, std::strlen(prefix)) == 0;
           });
}

/// One byte for each unit: those of ASCII, and some other for the rest.
std::string narrow(std::string_view text, bool isLittle) {
    std::string narrowed;
    narrowed.reserve(text.size() / 2);
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        const char low = text[isLittle ? i : i + 1];
        const char high = text[isLittle ? i + 1 : i];
        narrowed += high == 0 ? low : 'x';
    }
    return narrowed;
}

/// `tag` begins behind its bracket, and ends where the next tag begins or later.
bool hasManyAttributes(std::string_view tag) {
    if (tag.empty() || std::strchr("!?/= \t\r\n", tag.front()) != nullptr) {
        return false;
    }
    int count = 0;
    char quote = 0;
    char before = 0; // the last that was not white space
    for (const char byte : tag) {
        if (byte == '<') {
            break;
        }
        if (quote != 0) {
            quote = byte == quote ? '\0' : quote;
            continue;
        }
        if (byte == '>') {
            break;
        }
        if (byte == '"' || byte == '\'') {
            quote = byte;
            count += before == '=' ? 1 : 0;
        }
        if (count > maximumAttributes) {
            return true;
        }
        before = std::strchr(" \t\r\n", byte) == nullptr ? byte : before;
    }
    return false;
}

/// So many attributes take that many bytes at least, and no '<' stands among them: looking for it
/// from the ends of such stretches passes over most of a usual document.
std::size_t findTag(std::string_view text) {
    constexpr std::size_t stretch = std::string_view(" a=''").size() * maximumAttributes;
    std::size_t begin = 0;
    while (text.size() - begin > stretch) {
        const void* const last = memrchr(text.data() + begin, '<', stretch);
        if (last != nullptr) {
            begin = static_cast<std::size_t>(static_cast<const char*>(last) - text.data()) + 1;
            continue;
        }
        if (begin > 0 && hasManyAttributes(text.substr(begin))) {
            return begin - 1;
        }
        begin = text.find('<', begin + stretch);
        if (begin == std::string_view::npos) {
            break;
        }
        ++begin;
    }
    return std::string_view::npos;
}

} // namespace

std::optional<Excess> findManyAttributes(std::string_view text) {
    const Encoding encoding = detect(text);
    const bool isWide = encoding == Encoding::Utf16le || encoding == Encoding::Utf16be;
    const std::string narrowed = isWide ? narrow(text, encoding == Encoding::Utf16le) : "";
    const std::string_view readable = isWide ? narrowed : text;
    const std::string declared = declaredEncoding(readable);
    const bool isReadable =
        isWide ? declared.empty() || strncasecmp(declared.c_str(), "UTF-16", 6) == 0
               : encoding != Encoding::Other && keepsAscii(declared);
    if (!isReadable) {
        return text.size() <= largestUnreadable
                   ? std::nullopt
                   : std::optional<Excess>({1, 1,
                                            "documents of more than " +
                                                std::to_string(largestUnreadable) +
                                                " bytes cannot be in this encoding"});
    }
    const std::size_t place = findTag(readable);
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view before = readable.substr(0, place);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t lineStart = before.rfind('\n') + 1; // 0 in the first line
    return Excess{static_cast<int>(line), static_cast<int>(place - lineStart + 1),
                  "an element has more than " + std::to_string(maximumAttributes) + " attributes"};
}

} // namespace Orvil::LibXml
