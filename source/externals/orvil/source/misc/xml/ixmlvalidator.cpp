// SPDX-License-Identifier: MIT
// The validator factory and the message lists.
#include "misc/xml/ixmlvalidator.h"

#include "misc/xml/libxmlvalidator.h"

namespace Orvil {

SmartPointer<IXmlValidator> IXmlValidator::getInstance(const std::string& name) {
    if (name == "LibXmlSchemaValidator") {
        return {new LibXmlSchemaValidator};
    }
    return {};
}

void IXmlValidator::addError(const std::string& text) {
    errors_.push_back(text);
}

void IXmlValidator::addWarning(const std::string& text) {
    warnings_.push_back(text);
}

bool IXmlValidator::validate(IXmlNode* node) {
    clearMessages();
    return doValidate(node);
}

void IXmlValidator::clearMessages() {
    errors_.clear();
    warnings_.clear();
}

} // namespace Orvil
