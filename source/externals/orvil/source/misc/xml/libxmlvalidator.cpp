// SPDX-License-Identifier: MIT
// Compiling of schemas and validation with libxml2.
#include "misc/xml/libxmlvalidator.h"

#include "misc/xml/libxmlparser.h"
#include "misc/xml/libxmlstreamvalidation.h"
#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/xmlschemas.h>

#include <array>
#include <cstdarg>
#include <cstdio>

namespace Orvil {

namespace {

struct ParserContextDeleter {
    void operator()(xmlSchemaParserCtxt* context) const noexcept {
        xmlSchemaFreeParserCtxt(context);
    }
};
using ParserContext = std::unique_ptr<xmlSchemaParserCtxt, ParserContextDeleter>;

struct ValidContextDeleter {
    void operator()(xmlSchemaValidCtxt* context) const noexcept { xmlSchemaFreeValidCtxt(context); }
};
using ValidContext = std::unique_ptr<xmlSchemaValidCtxt, ValidContextDeleter>;

std::string formatMessage(const char* format, va_list arguments) {
    std::array<char, 500> buffer{};
    // Checking several sources in one go, clang-tidy 14 misses the callers' va_start.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    return buffer.data();
}

xmlNode* nextInTree(xmlNode* node, const xmlNode* root) {
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
        return node->children;
    }
    while (node != root && node->next == nullptr) {
        node = node->parent;
    }
    return node == root ? nullptr : node->next;
}

/// What the validator copies while it joins the text of the element: all that it has so far, for
/// each piece. Elements with others inside have no text that matters to it.
double bytesToCopy(const xmlNode& element) {
    double pieces = 0;
    double bytes = 0;
    for (const xmlNode* child = element.children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE) {
            return 0;
        }
        if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) {
            ++pieces;
            bytes += xmlStrlen(child->content);
        }
    }
    return pieces > 1 ? pieces / 2 * bytes : 0;
}

/// In a tree, CDATA sections and comments divide texts, and the validator takes a time quadratic in
/// the number of pieces. Throws when that would be seconds.
void checkPieces(xmlNode* root) {
    constexpr double allowed = 1e10; // bytes
    double copied = 0;
    for (xmlNode* node = root; node != nullptr; node = nextInTree(node, root)) {
        const bool isDivided = node->type == XML_ELEMENT_NODE && node->children != node->last;
        copied += isDivided ? bytesToCopy(*node) : 0;
        if (copied > allowed) {
            throw LibXml::failure(
                "LibXml: Document not validated: the text of the element in line " +
                    std::to_string(xmlGetLineNo(node)) + " is in too many pieces",
                __LINE__);
        }
    }
}

} // namespace

void LibXmlSchemaValidator::SchemaDeleter::operator()(xmlSchema* schema) const noexcept {
    xmlSchemaFree(schema);
}

LibXmlSchemaValidator::LibXmlSchemaValidator() = default;

LibXmlSchemaValidator::~LibXmlSchemaValidator() = default;

void LibXmlSchemaValidator::parseSpecification(const std::string& fileName) {
    schema_.reset();
    const LibXml::Silence silence;
    const std::string document = "LibXml: Schema Document " + fileName;
    const LibXmlDoc read(xmlReadFile(fileName.c_str(), nullptr, XML_PARSE_NONET));
    if (!read) {
        throw LibXml::failure(document + " not parsed successfully.", __LINE__);
    }
    const ParserContext context(xmlSchemaNewDocParserCtxt(read.get()));
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
    const ParserContext context(
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
    const ValidContext context(xmlSchemaNewValidCtxt(schema_.get()));
    if (!context) {
        throw LibXml::failure("LibXml: Could not create validation context", __LINE__);
    }
    xmlSchemaSetValidErrors(context.get(), onError, onWarning, this);
    const std::string_view text = libXmlNode->textOfParts();
    int result = 0;
    if (text.empty()) {
        xmlNode* const element = libXmlNode->getWholeNode();
        checkPieces(element);
        result = xmlSchemaValidateOneElement(context.get(), element);
    } else {
        result = LibXml::validateText(*context, text);
    }
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
