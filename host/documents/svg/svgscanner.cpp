// SPDX-License-Identifier: MIT
// Sets libxml2 up, takes its calls, and stops it: limits are this file's own, since libxml2's would
// refuse drawings with large images in them.
#include "host/documents/svg/svgscanner.h"

#include "host/documents/documenterror.h"
#include "host/documents/svg/filekind.h"

#include <libxml/SAX2.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>
#include <utility>

namespace host::svg {
namespace {

constexpr std::size_t referenceCost = 128; // in bytes: a parser of its own may be set up for each
constexpr std::size_t maximumEntityText = std::size_t{32} << 20; // bytes of all references together
constexpr std::size_t longTag = 4096; // bytes, below which attributes are few

const std::string manyAttributes =
    "an element has more than " + std::to_string(maximumAttributes) + " attributes";

/// `tag` goes from its '<' up to the next one or further.
bool hasManyAttributes(std::string_view tag) {
    if (tag.size() <= longTag) {
        return false;
    }
    const auto first = static_cast<unsigned char>(tag[1] | 0x20);
    if (!(first >= 'a' && first <= 'z') && first < 0x80 && tag[1] != '_' && tag[1] != ':') {
        return false;
    }
    std::size_t count = 0;
    for (std::size_t i = tag.find_first_of("\"'>"); i < tag.size() && tag[i] != '>';
         i = tag.find_first_of("\"'>", i + 1)) {
        if (++count > maximumAttributes) {
            return true;
        }
        i = tag.find(tag[i], i + 1);
        if (i == std::string_view::npos) {
            break;
        }
    }
    return false;
}

xmlParserCtxtPtr newContext() {
    // The library prepares itself when it is first used, which threads must not do together.
    static std::once_flag prepared;
    std::call_once(prepared, xmlInitParser);
    return xmlNewParserCtxt();
}

} // namespace

Scanner::Scanner(const std::string& source, std::string_view name, const ScanLimits& limits)
    : source_(source), name_(name), limits_(limits), context_(newContext()) {
    if (!context_) {
        throw std::bad_alloc();
    }
    tree_.source = source;
    context_->_private = this;
    xmlCtxtUseOptions(context_.get(),
                      XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC);
    setHandlers();
    learnNames();
}

void Scanner::setHandlers() {
    xmlSAXHandler& sax = *context_->sax;
    const xmlSAXHandler all = sax;
    sax = {};
    sax.initialized = XML_SAX2_MAGIC;
    sax.startDocument = all.startDocument;
    sax.internalSubset = all.internalSubset;
    sax.getParameterEntity = all.getParameterEntity;
    sax.getEntity = getEntity;
    sax.entityDecl = declareEntity;
    sax.attributeDecl = declareAttribute;
    sax.startElementNs = startElement;
    sax.endElementNs = endElement;
    sax.characters = characters;
    sax.ignorableWhitespace = characters;
    sax.cdataBlock = characters;
    sax.serror = noteError;
}

void Scanner::learnNames() {
    const auto intern = [this](const char* text) {
        return xmlDictLookup(context_->dict, reinterpret_cast<const xmlChar*>(text), -1);
    };
    svgUri_ = intern("http://www.w3.org/2000/svg");
    xlinkUri_ = intern("http://www.w3.org/1999/xlink");
    xmlUri_ = intern("http://www.w3.org/XML/1998/namespace");
    for (const TagName& tag : tagNames()) {
        tags_.emplace(intern(tag.name), tag.tag);
    }
    for (const AttributeKey& key : attributeKeys()) {
        auto& names =
            attributeNames_.try_emplace(intern(key.name), std::array{-1, -1, -1, -1}).first->second;
        names[static_cast<std::size_t>(key.space)] = static_cast<int>(key.attribute);
    }
}

void Scanner::raise(std::string_view reason, std::size_t place) const {
    throw errorAt(source_, name_, reason, place);
}

/// Where a markup declaration ends, or the one of the document type goes on with inner ones. What
/// stands in its literals is none of its own.
std::size_t Scanner::declarationEnd(std::size_t start) const {
    std::size_t end = source_.find_first_of("\"'[>", start);
    while (end < source_.size() && (source_[end] == '"' || source_[end] == '\'')) {
        end = std::min(source_.find(source_[end], end + 1), source_.size() - 1);
        end = source_.find_first_of("\"'[>", end + 1);
    }
    return std::min(end, source_.size());
}

/// libxml2 compares every attribute of an element with every other one, so their number is
/// limited before it sees them: here, in declareEntity and in declareAttribute. No '<' can stand in
/// a tag.
void Scanner::checkLongTags() const {
    struct Passage {
        std::string_view start;
        std::string_view end;
    };
    static constexpr std::array<Passage, 3> passages{
        {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}}};
    const std::string_view source = source_;
    for (std::size_t start = source.find('<'); start < source.size();) {
        const char kind = source_[start + 1]; // there is a zero behind the source
        if (kind != '!' && kind != '?') {
            const std::size_t next = std::min(source.find('<', start + 1), source.size());
            if (hasManyAttributes(source.substr(start, next - start))) {
                raise(manyAttributes, start);
            }
            start = next;
            continue;
        }
        const auto passage =
            std::find_if(passages.begin(), passages.end(), [&](const Passage& candidate) {
                return source.substr(start, candidate.start.size()) == candidate.start;
            });
        if (passage != passages.end()) {
            start = source.find(passage->end, start + passage->start.size());
            start = source.find('<', std::min(start, source.size()));
        } else {
            start = source.find('<', declarationEnd(start));
        }
    }
}

Tree Scanner::run() {
    const std::size_t first = source_.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    if (first == std::string::npos || source_[first] != '<') {
        raise(source_.empty() ? "the file is empty" : notXmlText(source_),
              first == std::string::npos ? 0 : first);
    }
    if (const std::size_t nul = source_.find('\0'); nul != std::string::npos) {
        raise("a zero byte stands in the text", nul);
    }
    checkLongTags();
    // An input without a buffer of libxml2's own, as it uses them for entities: nothing is copied,
    // and what the parser points at is the source.
    xmlParserInputPtr input =
        xmlNewStringInputStream(context_.get(), reinterpret_cast<const xmlChar*>(source_.c_str()));
    if (input == nullptr) {
        throw std::bad_alloc();
    }
    inputPush(context_.get(), input);
    xmlParseDocument(context_.get());
    if (!failed_ && context_->wellFormed == 0) {
        failed_ = true;
        reason_ = "not well-formed XML";
    }
    if (failed_) {
        throw DocumentError(name_, reason_, errorLine_, errorColumn_);
    }
    tree_.references = references_.takeShown();
    return std::move(tree_);
}

void Scanner::fail(xmlParserCtxtPtr context, std::string reason) {
    failed_ = true;
    reason_ = std::move(reason);
    const xmlParserInput* input = context_->input;
    errorLine_ = input == nullptr ? 0 : static_cast<std::size_t>(input->line);
    errorColumn_ = input == nullptr ? 0 : static_cast<std::size_t>(input->col);
    stop(context);
}

/// Entities are parsed by parsers of their own, of which each has to be told.
void Scanner::stop(xmlParserCtxtPtr context) {
    context->wellFormed = 0; // else entities are looked up behind getEntity's back
    xmlStopParser(context);
}

void Scanner::noteError(void* data, xmlErrorPtr error) {
    if (error->level != XML_ERR_FATAL) {
        return;
    }
    guarded(data, [&](Scanner& scanner) {
        std::string reason = error->message == nullptr ? "not well-formed XML" : error->message;
        reason.resize(std::min(reason.find('\n'), reason.size()));
        // The message may quote bytes of the input that are no text.
        std::replace_if(
            reason.begin(), reason.end(),
            [](char c) { return static_cast<unsigned char>(c) >= 0x80; }, '?');
        scanner.fail(static_cast<xmlParserCtxtPtr>(data), std::move(reason));
    });
}

void Scanner::declareEntity(void* data, const xmlChar* name, int type, const xmlChar* publicId,
                            const xmlChar* systemId, xmlChar* content) {
    if (type == XML_INTERNAL_GENERAL_ENTITY) {
        // The text is parsed where it is used, so any tag in it counts, whatever it seems to be
        // part of here. References to single characters are resolved in it already.
        guarded(data, [&](Scanner& scanner) {
            const std::string_view text = chars(content);
            for (std::size_t tag = text.find('<'); tag < text.size();) {
                const std::size_t next = std::min(text.find('<', tag + 1), text.size());
                if (hasManyAttributes(text.substr(tag, next - tag))) {
                    scanner.fail(static_cast<xmlParserCtxtPtr>(data), manyAttributes);
                    return;
                }
                tag = next;
            }
            xmlSAX2EntityDecl(data, name, type, publicId, systemId, content);
        });
    } else if (type == XML_INTERNAL_PARAMETER_ENTITY || type == XML_EXTERNAL_PARAMETER_ENTITY) {
        // Such entities declare what drawings do without. They are known as empty ones: nothing is
        // opened for them, and none can be made of others without end.
        static xmlChar nothing[] = "";
        xmlSAX2EntityDecl(data, name, XML_INTERNAL_PARAMETER_ENTITY, nullptr, nullptr, nothing);
    }
    // Others would make libxml2 open files.
}

/// Every element of the name gets the attributes that have defaults.
void Scanner::declareAttribute(void* data, const xmlChar* element, const xmlChar* /*name*/,
                               int /*type*/, int /*kind*/, const xmlChar* value,
                               xmlEnumerationPtr tree) {
    xmlFreeEnumeration(tree);
    if (value == nullptr) {
        return;
    }
    guarded(data, [&](Scanner& scanner) {
        Defaults& defaults = scanner.defaults_[element];
        defaults.bytes += std::strlen(chars(value));
        if (++defaults.count > maximumDefaults || defaults.bytes > maximumDefaultText) {
            scanner.fail(static_cast<xmlParserCtxtPtr>(data),
                         "the document type gives an element too many attributes");
        }
    });
}

xmlEntityPtr Scanner::getEntity(void* data, const xmlChar* name) {
    auto* context = static_cast<xmlParserCtxtPtr>(data);
    xmlEntityPtr entity = nullptr;
    guarded(data, [&](Scanner& scanner) {
        entity = xmlSAX2GetEntity(context, name);
        scanner.entityText_ +=
            entity == nullptr ? 0 : static_cast<std::size_t>(entity->length) + referenceCost;
        if (scanner.entityText_ > maximumEntityText) {
            entity = nullptr;
            scanner.fail(context, "the entities of the document expand too far");
        }
    });
    return entity;
}

void Scanner::startElement(void* data, const xmlChar* name, const xmlChar* prefix,
                           const xmlChar* uri, int namespaceCount, const xmlChar** /*namespaces*/,
                           int attributeCount, int /*defaultedCount*/, const xmlChar** attributes) {
    guarded(data, [&](Scanner& scanner) {
        scanner.begin(static_cast<xmlParserCtxtPtr>(data),
                      {name, prefix, uri, static_cast<unsigned>(namespaceCount),
                       static_cast<unsigned>(attributeCount), attributes});
    });
}

void Scanner::endElement(void* data, const xmlChar* /*name*/, const xmlChar* /*prefix*/,
                         const xmlChar* /*uri*/) {
    guarded(data, [&](Scanner& scanner) { scanner.end(static_cast<xmlParserCtxtPtr>(data)); });
}

void Scanner::characters(void* data, const xmlChar* text, int length) {
    guarded(data, [&](Scanner& scanner) {
        scanner.addText(static_cast<xmlParserCtxtPtr>(data),
                        {chars(text), static_cast<std::size_t>(length)});
    });
}

Tree scan(const std::string& source, std::string_view name, const ScanLimits& limits) {
    return Scanner(source, name, limits).run();
}

} // namespace host::svg
