// SPDX-License-Identifier: MIT
// The exchanges with the font manager: each builds its command text, sends it, and reads the reply
// into the font records that it was given.
#pragma once

#include "GLYFontInfo.h"
#include "misc/threads/smartpointer.h"
#include "misc/xml/ixmlnode.h"
#include "misc/xml/ixmlparser.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace GLY {

/// One exchange: construct it, fill the fonts, build(), send(), then read the members and the
/// records.
///
/// The command text is made of lines and only looks like XML: nothing in it is escaped, and its
/// last line closes an element that the first line has closed already. It is not the typed form
/// that protocolhandler.h writes.
///
/// Copies share the reply's document. send() throws what an override of parseResult() throws.
/// [main-thread], which send() blocks.
class GLYEvent {
public:
    /// Writes `command` anew.
    virtual void build() = 0;
    /// Sends `command` through the process-wide notify handler, keeps the answer in `result`, and
    /// returns what parseResult() makes of it.
    Orvil::IXmlNode* send();
    /// Reads `result`. Returns null if there is no usable answer of protocol version 2 or later,
    /// else the reply's root, which the event owns: it is valid until the next parseResult(), and
    /// no longer than the last copy of the event.
    virtual Orvil::IXmlNode* parseResult();

    /// The lines that name the plug-in's host process, to which the font manager sends its news.
    [[nodiscard]] static std::string getApplicationInfo();

    std::string result;       ///< the answer as the transport gave it; empty until send()
    std::string command;      ///< written by build()
    std::string replyVersion; ///< the answer's protocol version
    /// 1 if parseResult() gave a node, else 0. Meaningful only after send().
    std::int32_t succeeded = 0;

protected:
    GLYEvent() = default;
    GLYEvent(const GLYEvent&) = default;
    GLYEvent(GLYEvent&&) = default;
    GLYEvent& operator=(const GLYEvent&) = default;
    GLYEvent& operator=(GLYEvent&&) = default;
    ~GLYEvent() = default;

private:
    Orvil::IXmlNode* parseDocument();

    std::shared_ptr<Orvil::XmlDocumentHolder> document_;
};

/// An exchange about fonts.
class GLYFontBasedEvent : public GLYEvent {
public:
    GLYFontBasedEvent() = default;
    GLYFontBasedEvent(const GLYFontBasedEvent&) = default;
    GLYFontBasedEvent(GLYFontBasedEvent&&) = default;
    GLYFontBasedEvent& operator=(const GLYFontBasedEvent&) = default;
    GLYFontBasedEvent& operator=(GLYFontBasedEvent&&) = default;
    virtual ~GLYFontBasedEvent() = default;

    /// Shared with the caller, in the order in which they are written. None is null.
    std::vector<Orvil::SmartPointer<GLYFontInfo>> fonts;
};

/// Asks the font manager to look the fonts up in its library.
class GLYFontRequestEvent : public GLYFontBasedEvent {
public:
    void build() override;
    /// Replaces the protocol part of each record by the first reply font of its syncID, and sets
    /// its installed flag. Throws Orvil::Exception when a reply font holds a bad number or an
    /// unknown element; the records are left alone then.
    Orvil::IXmlNode* parseResult() override;

    /// Whether the font manager asks for the dialog. Meaningful only if a reply has said so.
    std::int32_t showWindow = 0;
};

/// Asks the font manager to activate the fonts from their containers.
class GLYFontActivateEvent : public GLYFontBasedEvent {
public:
    void build() override;
    /// Always returns null: whether fonts are active is found out by asking again.
    Orvil::IXmlNode* parseResult() override;
};

/// Asks the font manager to show the fonts.
class GLYFontInfoEvent : public GLYFontBasedEvent {
public:
    void build() override;
    /// Takes types and counts of the fonts over into the records, by PostScript name.
    Orvil::IXmlNode* parseResult() override;
};

/// Offers the fonts for purchase.
class GLYFontBuyEvent : public GLYFontBasedEvent {
public:
    void build() override;
    Orvil::IXmlNode* parseResult() override;
};

} // namespace GLY
