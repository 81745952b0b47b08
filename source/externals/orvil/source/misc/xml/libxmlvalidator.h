// SPDX-License-Identifier: MIT
// XML Schema validation over libxml2.
#pragma once

#include "misc/xml/ixmlvalidator.h"
#include "misc/xml/libxmlhandles.h"

#include <string>

namespace Orvil {

/// See IXmlValidator. Validates nodes of a LibXmlParser.
class LibXmlSchemaValidator : public IXmlValidator {
public:
    LibXmlSchemaValidator();
    LibXmlSchemaValidator(const LibXmlSchemaValidator&) = delete;
    LibXmlSchemaValidator& operator=(const LibXmlSchemaValidator&) = delete;
    ~LibXmlSchemaValidator() override;

    void parseSpecification(const std::string& fileName) override;
    void parseSpecificationString(const std::string& text) override;
    bool doValidate(IXmlNode* node) override;

    /// [one-thread] libxml2's callbacks: `validator` is the validator that the formatted text is
    /// added to, cut to 499 bytes. They throw when it is null.
    static void onError(void* validator, const char* format, ...)
        __attribute__((format(printf, 2, 3)));
    /// [one-thread] See onError.
    static void onWarning(void* validator, const char* format, ...)
        __attribute__((format(printf, 2, 3)));

private:
    LibXml::Schema schema_;
};

} // namespace Orvil
