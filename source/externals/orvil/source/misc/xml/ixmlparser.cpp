// SPDX-License-Identifier: MIT
// The parser factory, and how a holder lets go.
#include "misc/xml/ixmlparser.h"

#include "misc/xml/libxmlparser.h"

#include <utility>

namespace Orvil {

SmartPointer<IXmlParser> IXmlParser::getInstance(const std::string& name) {
    if (name == "LibXmlParser") {
        return {new LibXmlParser};
    }
    return {};
}

XmlDocumentHolder::~XmlDocumentHolder() {
    if (parser_) {
        parser_->cleanup();
    }
}

XmlDocumentHolder& XmlDocumentHolder::operator=(XmlDocumentHolder&& other) noexcept {
    const XmlDocumentHolder old(std::move(*this));
    parser_ = std::exchange(other.parser_, nullptr);
    return *this;
}

} // namespace Orvil
