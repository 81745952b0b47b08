// SPDX-License-Identifier: MIT
// The message model of the four exchanges with the font manager: font records, requests, replies,
// their consistency rules and the merge of a reply into its request. Knows nothing of XML but the
// type keywords. The codec is in protocolhandler.h.
#pragma once

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <string_view>

/// [one-thread] All classes are plain values. Broken rules throw Orvil::Exception with the source
/// path "source/common/protocol"; nothing returns a status.
namespace Protocol {

/// One font as it travels in a message.
class Font {
public:
    /// The values are part of the plug-in's records; other numbers may occur and read as "error".
    enum Type : std::int32_t {
        T1 = 0,    ///< Type 1
        TT = 1,    ///< TrueType
        OT_T1 = 2, ///< OpenType with PostScript outlines
        OT_TT = 3, ///< OpenType with TrueType outlines
        all = 4,   ///< any; only in requests
    };

    /// One extra property that the font manager reports.
    struct Info {
        std::string name;
        std::string value;

        bool operator==(const Info&) const = default;
    };

    /// "T1", "TT", "OT_T1", "OT_TT" or "all"; "error" for every other value.
    [[nodiscard]] static std::string typeToString(Type type);
    /// The reverse, by exact comparison of the whole text. Throws for any other text.
    [[nodiscard]] static Type stringToType(const std::string& text);

    /// Writes an indented dump to standard error; every line begins with `prefix`.
    void debugPrint(const std::string& prefix) const;

    bool operator==(const Font&) const = default;

    std::string syncID;                  ///< chosen by the requester, unique in one message
    Type type = all;                     ///< font technology
    std::string psName;                  ///< PostScript name
    std::string styleName;               ///< style name
    std::string familyName;              ///< family name
    std::uint32_t count = 0;             ///< matching fonts that the font manager knows
    bool isActive = false;               ///< a matching font is active
    std::uint32_t typeMatchingCount = 0; ///< matches of the requested type
    bool isTypeMatchingActive = false;   ///< a match of the requested type is active
    std::string typeMatchingContainerID; ///< container of the type-matching font
    std::list<Info> fontInfos;           ///< extra properties
    bool handled = false;                ///< a buy request was handled
    std::string containerID;             ///< container (library entry) of the font
    bool activationSuccessful = false;   ///< activation succeeded
};

using FontList = std::list<Font>;
/// A list's fonts by syncID, in byte-wise order. The positions are the list's own.
using FontIterMap = std::map<std::string, FontList::const_iterator>;

/// Both throw when the text is empty.
void checkSyncID(const std::string& syncID);
void checkPsName(const std::string& psName);
/// Throws when the type is "all".
void checkReplyType(Font::Type type);

/// The rules of the messages; each applies its checks in a fixed order and throws at the first
/// that fails.
void checkFontRequestFont(const Font& font);       ///< psName, syncID
void checkShowRequestFont(const Font& font);       ///< psName, syncID
void checkActivationRequestFont(const Font& font); ///< psName, syncID
void checkBuyRequestFont(const Font& font);        ///< psName, syncID
void checkShowReplyFont(const Font& font);         ///< type, psName, syncID
void checkFontReplyFont(const Font& font);         ///< type, psName, fontInfos not empty, syncID
void checkActivationReplyFont(const Font& font);   ///< syncID

/// Indexes `fonts`; `out` is cleared first. Throws when two fonts share a syncID. An empty syncID
/// is a legal key.
void getIterMap(const FontList& fonts, FontIterMap& out);

/// Writes the dumps of all fonts to standard error.
void debugPrint(const FontList& fonts, const std::string& prefix);

// In all messages: constructors check every font with the message's rule, in list order.
// setFontList checks the list that the object holds BEFORE the assignment and then takes the new
// one unchecked: it is checked at the next setFontList. A throwing setFontList keeps the old list.
// The merges return copies of the request's fonts in ascending order of syncID, with the fields
// that the reply's kind carries taken from the reply's fonts; they throw when a message holds a
// syncID twice, when the messages differ in the number of fonts, or when a font is not answered.

class FontReply {
public:
    FontReply(bool showWindow, const FontList& fonts);
    /// The same without a copy.
    FontReply(bool showWindow, FontList&& fonts);
    FontList& setFontList(const FontList& newFonts);
    void debugPrint(const std::string& prefix) const;

    bool showWindow;
    FontList fonts;
};

class FontRequest {
public:
    FontRequest(bool mustMatchFontType, const FontList& fonts, const std::string& targetApp,
                const std::string& targetClass);
    FontList& setFontList(const FontList& newFonts);
    /// Takes everything but syncID, handled and activationSuccessful from the reply. A request font
    /// that has fontInfos already loses them, with a warning on standard error.
    [[nodiscard]] FontList mergeFontsInReply(const FontReply& reply) const;
    void debugPrint(const std::string& prefix) const;

    bool mustMatchFontType;
    FontList fonts;
    std::string targetApp;
    std::string targetClass;
};

class ShowReply {
public:
    explicit ShowReply(const FontList& fonts);
    explicit ShowReply(FontList&& fonts);
    FontList& setFontList(const FontList& newFonts);
    void debugPrint(const std::string& prefix) const;

    FontList fonts;
};

class ShowRequest {
public:
    ShowRequest(bool mustMatchFontType, const FontList& fonts);
    FontList& setFontList(const FontList& newFonts);
    /// Takes count, psName and type from the reply.
    [[nodiscard]] FontList mergeFontsInReply(const ShowReply& reply) const;
    void debugPrint(const std::string& prefix) const;

    bool mustMatchFontType;
    FontList fonts;
};

class ActivationReply {
public:
    explicit ActivationReply(const FontList& fonts);
    explicit ActivationReply(FontList&& fonts);
    FontList& setFontList(const FontList& newFonts);
    void debugPrint(const std::string& prefix) const;

    FontList fonts;
};

class ActivationRequest {
public:
    explicit ActivationRequest(const FontList& fonts);
    FontList& setFontList(const FontList& newFonts);
    /// Takes activationSuccessful and containerID from the reply.
    [[nodiscard]] FontList mergeFontsInReply(const ActivationReply& reply) const;
    void debugPrint(const std::string& prefix) const;

    FontList fonts;
};

class BuyReply {
public:
    /// No rule applies to the font.
    explicit BuyReply(const Font& font);
    Font& setFont(const Font& newFont);
    void debugPrint(const std::string& prefix) const;

    Font font;
};

class BuyRequest {
public:
    explicit BuyRequest(const Font& font);
    /// Checks the new font first, unlike setFontList.
    Font& setFont(const Font& newFont);
    /// The request's font with `handled` of the reply's; nothing is matched or counted.
    [[nodiscard]] Font mergeFontInReply(const BuyReply& reply) const;
    void debugPrint(const std::string& prefix) const;

    Font font;
};

/// One parsed reply: exactly the pointer that `type` names is set. The pointers share ownership, so
/// that a reply may outlive its container.
struct ReplyContainer {
    enum Type : std::int32_t {
        fontReplyType = 0,
        showReplyType = 1,
        buyReplyType = 2,
        activationReplyType = 3,
    };

    std::int32_t type = fontReplyType;
    boost::shared_ptr<FontReply> fontReply;
    boost::shared_ptr<ShowReply> showReply;
    boost::shared_ptr<BuyReply> buyReply;
    boost::shared_ptr<ActivationReply> activationReply;
};

} // namespace Protocol
