// SPDX-License-Identifier: MIT
// A document that is read while it is walked, and dropped behind the walk.
#pragma once

#include "misc/xml/libxmlnodepool.h"

#include <memory>
#include <string_view>

struct _xmlDoc;        // NOLINT: the names are libxml2's
struct _xmlNode;       // NOLINT
struct _xmlParserCtxt; // NOLINT

namespace Orvil {

/// See IXmlParser::setPartLevel. libxml2 is fed piece by piece, so that at any time its tree holds
/// the elements that are open, the present part, and what one piece of text brings.
/// Throws: Exception from all that reads. Threads: one at a time.
class LibXmlParts {
public:
    /// Reads up to the root element. The text is well-formed, not owned, and must outlive this.
    LibXmlParts(std::string_view text, int level);
    LibXmlParts(const LibXmlParts&) = delete;
    LibXmlParts& operator=(const LibXmlParts&) = delete;
    ~LibXmlParts();

    _xmlNode* root() const;
    std::string_view text() const { return text_; }

    // These read on until it is known what they are asked for. A null node has nothing.
    void readChild(const _xmlNode* node);
    void readNext(const _xmlNode* node);
    void readWhole(const _xmlNode* node);

    bool isPart(const _xmlNode* node) const { return depthOf(node) == level_; }
    bool isBelowPart(const _xmlNode* node) const { return depthOf(node) > level_; }
    /// The memory of the wrappers below the present part.
    LibXmlNodePool& nodesBelow() { return nodesBelow_; }
    /// Frees a part that has a next one, and everything below it.
    void drop(_xmlNode* part);

private:
    struct ContextDeleter {
        void operator()(_xmlParserCtxt* context) const noexcept;
    };

    /// False at the end of the text.
    bool readOn();
    bool isOpen(const _xmlNode* node) const;
    static int depthOf(const _xmlNode* node);

    std::string_view text_;
    std::string_view rest_;
    int level_;
    bool isAtEnd_ = false;
    std::unique_ptr<_xmlParserCtxt, ContextDeleter> context_;
    LibXmlNodePool nodesBelow_;
};

} // namespace Orvil
