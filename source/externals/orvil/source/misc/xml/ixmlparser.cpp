// SPDX-License-Identifier: MIT
// The parser factory.
#include "misc/xml/ixmlparser.h"

#include "misc/xml/libxmlparser.h"

namespace Orvil {

SmartPointer<IXmlParser> IXmlParser::getInstance(const std::string& name) {
    if (name == "LibXmlParser") {
        return {new LibXmlParser};
    }
    return {};
}

} // namespace Orvil
