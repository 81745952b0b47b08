// SPDX-License-Identifier: MIT
// Compiling of schemas and validation with libxml2.
#include "misc/xml/libxmlvalidator.h"

#include "misc/xml/libxmlhandles.h"
#include "misc/xml/libxmlparser.h"
#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/xmlschemas.h>

#include <array>
#include <cstdarg>
#include <cstdio>

namespace Orvil {

namespace {

std::string formatMessage(const char* format, va_list arguments) {
    std::array<char, 500> buffer{};
    // Checking several sources in one go, clang-tidy 14 misses the callers' va_start.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    return buffer.data();
}

} // namespace

LibXmlSchemaValidator::LibXmlSchemaValidator() = default;

LibXmlSchemaValidator::~LibXmlSchemaValidator() = default;

void LibXmlSchemaValidator::parseSpecification(const std::string& fileName) {
    schema_.reset();
    const LibXml::Silence silence;
    const std::string document = "LibXml: Schema Document " + fileName;
    const LibXml::Document read(xmlReadFile(fileName.c_str(), nullptr, XML_PARSE_NONET));
    if (!read) {
        throw LibXml::failure(document + " not parsed successfully.", __LINE__);
    }
    const LibXml::SchemaParserContext context(xmlSchemaNewDocParserCtxt(read.get()));
    if (!context) {
        throw LibXml::failure(document + " schema parser context unsuccessful.", __LINE__);
    }
    schema_.reset(xmlSchemaParse(context.get()));
    if (!schema_) {
        throw LibXml::failure(document + " schema parsing unsuccessful.", __LINE__);
    }
}

void LibXmlSchemaValidator::parseSpecificationString(const std::string& text) {
    schema_.reset();
    const LibXml::Silence silence;
    const LibXml::SchemaParserContext context(
        xmlSchemaNewMemParserCtxt(text.data(), static_cast<int>(text.size())));
    if (!context) {
        throw LibXml::failure("LibXml: Memory schema parser context unsuccessful.", __LINE__);
    }
    schema_.reset(xmlSchemaParse(context.get()));
    if (!schema_) {
        throw LibXml::failure("LibXml: Memory schema parsing unsuccessful.", __LINE__);
    }
}

bool LibXmlSchemaValidator::doValidate(IXmlNode* node) {
    auto* libXmlNode = dynamic_cast<LibXmlNode*>(node);
    if (libXmlNode == nullptr) {
        throw LibXml::failure("LibXmlSchemaValidator can only validate LibXmlNodes", __LINE__);
    }
    if (!schema_) {
        throw LibXml::failure("LibXml: No Schema loaded for validation", __LINE__);
    }
    const LibXml::Silence silence;
    const LibXml::SchemaValidContext context(xmlSchemaNewValidCtxt(schema_.get()));
    if (!context) {
        throw LibXml::failure("LibXml: Could not create validation context", __LINE__);
    }
    xmlSchemaSetValidErrors(context.get(), onError, onWarning, this);
    const int result = xmlSchemaValidateOneElement(context.get(), libXmlNode->getNode());
    if (result < 0) {
        throw LibXml::failure("LibXml: Could not create validation context", __LINE__);
    }
    return result == 0;
}

void LibXmlSchemaValidator::onError(void* validator, const char* format, ...) {
    if (validator == nullptr) {
        throw LibXml::failure("LibXml: validity error function got bad context.", __LINE__);
    }
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatMessage(format, arguments);
    va_end(arguments);
    static_cast<LibXmlSchemaValidator*>(validator)->addError(text);
}

void LibXmlSchemaValidator::onWarning(void* validator, const char* format, ...) {
    if (validator == nullptr) {
        throw LibXml::failure("LibXml: validity warning function got bad context.", __LINE__);
    }
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatMessage(format, arguments);
    va_end(arguments);
    static_cast<LibXmlSchemaValidator*>(validator)->addWarning(text);
}

} // namespace Orvil
