// SPDX-License-Identifier: MIT
// Parses a drawing with libxml2's SAX interface. The source is parsed where it lies, so that the
// places of tags and values in it are known without a second look. Limits are this file's own,
// since libxml2's would refuse drawings with large images in them.
#include "host/documents/documenterror.h"
#include "host/documents/svgtree.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace host::svg {
namespace {

constexpr std::size_t maximumAttributes = 1000; // of one element
constexpr std::size_t maximumNamespaces = 1024; // in scope
constexpr std::size_t referenceCost = 128; // in bytes: a parser of its own may be set up for each
constexpr std::size_t maximumEntityText = std::size_t{32} << 20; // bytes of all references together
constexpr std::size_t longTag = 4096; // bytes, below which attributes are few

struct TagName {
    const char* name;
    Tag tag;
};
constexpr std::array<TagName, 49> tagNames{{
    {"svg", Tag::Svg},
    {"g", Tag::Group},
    {"a", Tag::Link},
    {"switch", Tag::Switch},
    {"use", Tag::Use},
    {"text", Tag::Text},
    {"tspan", Tag::Span},
    {"textPath", Tag::TextPath},
    {"tref", Tag::TextReference},
    {"altGlyph", Tag::AlternateGlyph},
    {"flowRoot", Tag::FlowRoot},
    {"flowPara", Tag::FlowPara},
    {"flowDiv", Tag::FlowPara},
    {"flowSpan", Tag::FlowSpan},
    {"flowRegion", Tag::FlowRegion},
    {"flowRegionExclude", Tag::FlowRegion},
    {"style", Tag::Style},
    {"defs", Tag::Definitions},
    {"symbol", Tag::Definitions},
    {"clipPath", Tag::Definitions},
    {"mask", Tag::Definitions},
    {"pattern", Tag::Definitions},
    {"marker", Tag::Definitions},
    {"filter", Tag::Definitions},
    {"path", Tag::Shape},
    {"rect", Tag::Shape},
    {"circle", Tag::Shape},
    {"ellipse", Tag::Shape},
    {"line", Tag::Shape},
    {"polyline", Tag::Shape},
    {"polygon", Tag::Shape},
    {"image", Tag::Shape},
    {"foreignObject", Tag::Ignored},
    {"metadata", Tag::Ignored},
    {"title", Tag::Ignored},
    {"desc", Tag::Ignored},
    {"script", Tag::Ignored},
    {"font", Tag::Ignored},
    {"font-face", Tag::Ignored},
    {"font-face-src", Tag::Ignored},
    {"font-face-uri", Tag::Ignored},
    {"glyph", Tag::Ignored},
    {"missing-glyph", Tag::Ignored},
    {"linearGradient", Tag::Ignored},
    {"radialGradient", Tag::Ignored},
    {"animate", Tag::Ignored},
    {"set", Tag::Ignored},
    {"view", Tag::Ignored},
    {"cursor", Tag::Ignored},
}};

enum class Space : std::uint8_t { None, Xlink, Xml, Foreign };
struct AttributeKey {
    const char* name;
    Space space;
    AttributeName attribute;
};
constexpr std::array<AttributeKey, 28> attributeKeys{{
    {"id", Space::None, AttributeName::Id},
    {"class", Space::None, AttributeName::Class},
    {"style", Space::None, AttributeName::Style},
    {"font-family", Space::None, AttributeName::FontFamily},
    {"font-style", Space::None, AttributeName::FontStyle},
    {"font-weight", Space::None, AttributeName::FontWeight},
    {"font-stretch", Space::None, AttributeName::FontStretch},
    {"display", Space::None, AttributeName::Display},
    {"href", Space::None, AttributeName::Reference},
    {"href", Space::Xlink, AttributeName::Reference},
    {"space", Space::Xml, AttributeName::Space},
    {"label", Space::Foreign, AttributeName::Label},
    {"groupmode", Space::Foreign, AttributeName::GroupMode},
    {"layer", Space::Foreign, AttributeName::Layer},
    {"extraneous", Space::Foreign, AttributeName::Extraneous},
    {"role", Space::Foreign, AttributeName::Role},
    {"clip-path", Space::None, AttributeName::Paint},
    {"mask", Space::None, AttributeName::Paint},
    {"fill", Space::None, AttributeName::Paint},
    {"stroke", Space::None, AttributeName::Paint},
    {"filter", Space::None, AttributeName::Paint},
    {"marker", Space::None, AttributeName::Paint},
    {"marker-start", Space::None, AttributeName::Paint},
    {"marker-mid", Space::None, AttributeName::Paint},
    {"marker-end", Space::None, AttributeName::Paint},
    {"requiredExtensions", Space::None, AttributeName::RequiredExtensions},
    {"media", Space::None, AttributeName::Media},
    {"type", Space::None, AttributeName::Type},
}};

struct ContextDeleter {
    void operator()(xmlParserCtxtPtr context) const {
        xmlFreeDoc(context->myDoc);
        context->myDoc = nullptr;
        xmlFreeParserCtxt(context);
    }
};
using Context = std::unique_ptr<xmlParserCtxt, ContextDeleter>;

const char* chars(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

class Scanner {
public:
    Scanner(const std::string& source, std::string_view name, const ScanLimits& limits);
    Tree run();

private:
    struct Open {
        ElementId element;
        std::uint32_t namespaces;
        bool keep;
        bool takesText; ///< its character data is text of the drawing
        bool inFrame;
        bool muted; ///< nothing in it counts
        Tag tag;
    };

    /// Runs a callback's work. No exception may pass through libxml2: it is told as a failure.
    template <typename Work>
    static void guarded(void* context, Work&& work) {
        auto* parser = static_cast<xmlParserCtxtPtr>(context);
        auto* scanner = static_cast<Scanner*>(parser->_private);
        if (scanner == nullptr || scanner->failed_) {
            stop(parser); // the one around it has failed already
            return;
        }
        try {
            work(*scanner);
        } catch (const std::exception& error) {
            scanner->fail(parser, error.what());
        }
    }
    static void startElement(void* context, const xmlChar* name, const xmlChar* prefix,
                             const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                             int attributeCount, int defaultedCount, const xmlChar** attributes);
    static void endElement(void* context, const xmlChar* name, const xmlChar* prefix,
                           const xmlChar* uri);
    static void characters(void* context, const xmlChar* text, int length);
    static void declareEntity(void* context, const xmlChar* name, int type, const xmlChar* publicId,
                              const xmlChar* systemId, xmlChar* content);
    static xmlEntityPtr getEntity(void* context, const xmlChar* name);
    static void noteError(void* context, xmlErrorPtr error);

    void setHandlers();
    void learnNames();
    void checkLongTags() const;
    void begin(xmlParserCtxtPtr context, const xmlChar* name, const xmlChar* uri,
               unsigned namespaceCount, unsigned attributeCount, const xmlChar** attributes);
    void end(xmlParserCtxtPtr context);
    void addAttributes(Element& element, unsigned count, const xmlChar** attributes);
    void interpretAttributes(Element& element, bool& muted);
    void noteFontFace(std::string_view local, unsigned count, const xmlChar** attributes);
    void addText(xmlParserCtxtPtr context, std::string_view text);
    void closePiece(std::uint32_t place);
    Space spaceOf(const xmlChar* uri) const;
    std::string_view keep(const xmlChar* start, const xmlChar* end);

    /// The place in the source up to which the parser has read; noPlace within an entity.
    std::uint32_t place(xmlParserCtxtPtr context) const {
        return context == context_.get() && context->inputNr == 1
                   ? static_cast<std::uint32_t>(chars(context->input->cur) - source_.data())
                   : noPlace;
    }
    std::uint32_t tagStartBefore(std::uint32_t place) const {
        return place == noPlace
                   ? noPlace
                   : static_cast<std::uint32_t>(source_.rfind('<', place == 0 ? 0 : place - 1));
    }
    void fail(xmlParserCtxtPtr context, std::string reason);
    static void stop(xmlParserCtxtPtr context);
    [[noreturn]] void raise(std::string_view reason, std::size_t place) const;

    const std::string& source_;
    std::string_view name_;
    ScanLimits limits_;
    Context context_;
    Tree tree_;
    std::vector<Open> open_;
    std::unordered_map<const xmlChar*, Tag> tags_;
    std::unordered_map<const xmlChar*, std::array<int, 4>> attributeNames_; ///< by Space; -1: none
    const xmlChar* svgUri_ = nullptr;
    const xmlChar* xlinkUri_ = nullptr;
    const xmlChar* xmlUri_ = nullptr;

    std::uint32_t lastTagEnd_ = 0;
    bool pieceOpen_ = false;
    std::uint32_t namespaces_ = 0;
    std::size_t entityText_ = 0;
    std::string sheetText_;
    std::uint32_t sheetStart_ = noPlace;

    bool failed_ = false;
    std::string reason_;
    std::size_t errorLine_ = 0;
    std::size_t errorColumn_ = 0;
};

Scanner::Scanner(const std::string& source, std::string_view name, const ScanLimits& limits)
    : source_(source), name_(name), limits_(limits), context_(xmlNewParserCtxt()) {
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
    for (const TagName& tag : tagNames) {
        tags_.emplace(intern(tag.name), tag.tag);
    }
    for (const AttributeKey& key : attributeKeys) {
        auto& names =
            attributeNames_.try_emplace(intern(key.name), std::array{-1, -1, -1, -1}).first->second;
        names[static_cast<std::size_t>(key.space)] = static_cast<int>(key.attribute);
    }
}

void Scanner::raise(std::string_view reason, std::size_t place) const {
    const std::string_view before = std::string_view(source_).substr(0, place);
    const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    throw DocumentError(name_, reason, line + 1, place - (before.rfind('\n') + 1) + 1);
}

/// libxml2 compares every attribute of an element with every other one, so their number is
/// limited before it sees them. No '<' can stand in a tag.
void Scanner::checkLongTags() const {
    for (std::size_t start = source_.find('<'); start != std::string::npos;) {
        const std::size_t next = std::min(source_.find('<', start + 1), source_.size());
        if (next - start > longTag && source_[start + 1] != '!' && source_[start + 1] != '?') {
            std::size_t count = 0;
            for (std::size_t i = source_.find_first_of("\"'>", start);
                 i < next && source_[i] != '>'; i = source_.find_first_of("\"'>", i + 1)) {
                if (++count > maximumAttributes) {
                    raise("an element has more than " + std::to_string(maximumAttributes) +
                              " attributes",
                          start);
                }
                i = source_.find(source_[i], i + 1);
                if (i == std::string::npos) {
                    break;
                }
            }
        }
        start = next < source_.size() ? next : std::string::npos;
    }
}

Tree Scanner::run() {
    const std::size_t first = source_.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    if (first == std::string::npos || source_[first] != '<') {
        raise(source_.empty() ? "the file is empty" : "not XML",
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
    // Others would make libxml2 open files.
    if (type == XML_INTERNAL_GENERAL_ENTITY) {
        xmlSAX2EntityDecl(data, name, type, publicId, systemId, content);
    }
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

Space Scanner::spaceOf(const xmlChar* uri) const {
    return uri == nullptr || uri == svgUri_ ? Space::None
           : uri == xlinkUri_               ? Space::Xlink
           : uri == xmlUri_                 ? Space::Xml
                                            : Space::Foreign;
}

std::string_view Scanner::keep(const xmlChar* start, const xmlChar* end) {
    const std::string_view value(chars(start), static_cast<std::size_t>(end - start));
    const std::less_equal<const char*> notAfter;
    if (notAfter(source_.data(), value.data()) &&
        notAfter(value.data() + value.size(), source_.data() + source_.size())) {
        return value;
    }
    return tree_.values.emplace_back(value);
}

void Scanner::addAttributes(Element& element, unsigned count, const xmlChar** attributes) {
    element.firstAttribute = static_cast<std::uint32_t>(tree_.attributes.size());
    for (unsigned i = 0; i < count; ++i, attributes += 5) {
        const auto names = attributeNames_.find(attributes[0]);
        if (names == attributeNames_.end()) {
            continue;
        }
        const int name = names->second[static_cast<std::size_t>(spaceOf(attributes[2]))];
        if (name >= 0) {
            tree_.attributes.push_back(
                {static_cast<AttributeName>(name), keep(attributes[3], attributes[4])});
        }
    }
    element.attributeCount =
        static_cast<std::uint16_t>(tree_.attributes.size() - element.firstAttribute);
}

void Scanner::interpretAttributes(Element& element, bool& muted) {
    const auto noteUrls = [this](std::string_view value) {
        for (std::size_t url = value.find("url("); url != std::string_view::npos;
             url = value.find("url(", url + 4)) {
            const std::size_t hash = value.find_first_not_of("'\" ", url + 4);
            if (hash != std::string_view::npos && value[hash] == '#') {
                const std::size_t end = value.find_first_of(")'\" ", hash);
                tree_.references.insert(value.substr(hash + 1, end - hash - 1));
            }
        }
    };
    for (std::size_t i = element.firstAttribute; i < tree_.attributes.size(); ++i) {
        const Attribute& attribute = tree_.attributes[i];
        switch (attribute.name) {
        case AttributeName::Space:
            element.preserve = attribute.value == "preserve";
            break;
        case AttributeName::GroupMode:
            element.layer = element.layer || attribute.value == "layer";
            break;
        case AttributeName::Layer:
            element.layer = element.layer || attribute.value == "yes";
            break;
        case AttributeName::Extraneous:
            element.transparent = element.topLevel && attribute.value == "self";
            break;
        case AttributeName::Reference:
            if (attribute.value.starts_with('#')) {
                tree_.references.insert(attribute.value.substr(1));
            }
            break;
        case AttributeName::Paint:
        case AttributeName::Style:
            noteUrls(attribute.value);
            break;
        case AttributeName::RequiredExtensions:
            muted = muted || !attribute.value.empty();
            break;
        default:
            break;
        }
    }
    element.layer = element.layer && element.tag == Tag::Group;
}

/// Text in an SVG font comes with the document, as it does with one that a font-face fetches.
void Scanner::noteFontFace(std::string_view local, unsigned count, const xmlChar** attributes) {
    if (local != "font-face") {
        return;
    }
    for (unsigned i = 0; i < count; ++i, attributes += 5) {
        if (std::strcmp(chars(attributes[0]), "font-family") == 0) {
            const auto families = css::readFamilies(
                {chars(attributes[3]), static_cast<std::size_t>(attributes[4] - attributes[3])});
            if (!families.empty()) {
                tree_.embeddedFamilies.insert(css::foldFamily(families.front().name));
            }
        }
    }
}

void Scanner::begin(xmlParserCtxtPtr context, const xmlChar* name, const xmlChar* uri,
                    unsigned namespaceCount, unsigned attributeCount, const xmlChar** attributes) {
    const bool svg = uri == svgUri_;
    const auto known = svg ? tags_.find(name) : tags_.end();
    Element element;
    element.tag = known == tags_.end() ? Tag::Unknown : known->second;
    if (open_.empty() && element.tag != Tag::Svg) {
        fail(context,
             "not an SVG drawing: its root element is '" +
                 std::string(chars(name), std::min<std::size_t>(std::strlen(chars(name)), 60)) +
                 "'" + (svg ? "" : ", which is not in the namespace of SVG"));
        return;
    }
    if (open_.size() >= limits_.maximumDepth) {
        fail(context,
             "elements are nested more than " + std::to_string(limits_.maximumDepth) + " deep");
        return;
    }
    namespaces_ += namespaceCount;
    if (namespaces_ > maximumNamespaces || attributeCount > maximumAttributes) {
        fail(context, namespaces_ > maximumNamespaces ? "too many namespaces are declared"
                                                      : "an element has too many attributes");
        return;
    }

    const std::uint32_t tagEnd = place(context);
    element.tagStart = tagStartBefore(tagEnd);
    closePiece(element.tagStart);
    lastTagEnd_ = tagEnd == noPlace ? noPlace : tagEnd + 1;

    const Open* outer = open_.empty() ? nullptr : &open_.back();
    const auto id = static_cast<ElementId>(tree_.elements.size());
    if (outer != nullptr) {
        const Element& parent = tree_.elements[outer->element];
        element.parent = outer->element;
        element.preserve = parent.preserve;
        element.topLevel = parent.transparent;
    }
    element.transparent = outer == nullptr || (element.topLevel && element.tag == Tag::Switch);
    bool muted = (outer != nullptr && outer->muted) || element.tag == Tag::Ignored ||
                 (!svg && outer != nullptr) || element.tag == Tag::Style;
    addAttributes(element, attributeCount, attributes);
    interpretAttributes(element, muted);
    if (element.tag == Tag::Ignored) {
        noteFontFace(chars(name), attributeCount, attributes);
    }

    element.firstPiece = static_cast<std::uint32_t>(tree_.pieces.size());
    bool takesText = false;
    bool inFrame = outer != nullptr && outer->inFrame;
    switch (element.tag) {
    case Tag::Text:
    case Tag::FlowRoot:
        if (inFrame) {
            // A text within a text is drawn by nobody alike; its words count as the outer one's.
            element.tag = Tag::Span;
        }
        inFrame = true;
        takesText = element.tag != Tag::FlowRoot;
        break;
    case Tag::Link:
    case Tag::Span:
    case Tag::TextPath:
    case Tag::AlternateGlyph:
    case Tag::FlowPara:
    case Tag::FlowSpan:
        takesText = inFrame;
        break;
    case Tag::TextReference:
        if (inFrame && !muted) {
            tree_.pieces.push_back({id, static_cast<std::uint32_t>(tree_.text.size()),
                                    static_cast<std::uint32_t>(tree_.text.size()), noPlace,
                                    noPlace});
        }
        break;
    case Tag::Switch:
        break;
    default:
        muted = muted || inFrame;
        break;
    }
    if (element.tag == Tag::Style) {
        sheetText_.clear();
        sheetStart_ = lastTagEnd_;
    }
    const bool keep = !muted && (limits_.keepAll || takesText || element.tag == Tag::FlowRoot ||
                                 element.tag == Tag::TextReference || element.layer ||
                                 (element.topLevel && element.tag == Tag::Group));
    open_.push_back({id, namespaceCount, keep || outer == nullptr, takesText && !muted, inFrame,
                     muted, element.tag});
    tree_.elements.push_back(element);
}

void Scanner::end(xmlParserCtxtPtr context) {
    const std::uint32_t tagEnd = place(context);
    const std::uint32_t tagStart = tagStartBefore(tagEnd);
    closePiece(tagStart);
    lastTagEnd_ = tagEnd;

    const Open closing = open_.back();
    open_.pop_back();
    namespaces_ -= closing.namespaces;
    Element& element = tree_.elements[closing.element];
    if (closing.tag == Tag::Style) {
        const std::string_view type = tree_.valueOf(closing.element, AttributeName::Type);
        const std::string_view media = tree_.valueOf(closing.element, AttributeName::Media);
        if ((type.empty() || type.starts_with("text/css")) && css::appliesToScreens(media)) {
            tree_.sheets.push_back({std::move(sheetText_), sheetStart_, tagStart});
        }
    }
    if (!closing.keep) {
        // Nothing of its subtree was kept either, so all of it is at the end of the tables.
        tree_.attributes.resize(element.firstAttribute);
        tree_.elements.resize(closing.element);
        return;
    }
    if (!open_.empty()) {
        open_.back().keep = true;
    }
    element.subtreeEnd = static_cast<ElementId>(tree_.elements.size());
    element.pieceEnd = static_cast<std::uint32_t>(tree_.pieces.size());
}

void Scanner::addText(xmlParserCtxtPtr context, std::string_view text) {
    if (open_.empty()) {
        return;
    }
    const Open& current = open_.back();
    if (current.tag == Tag::Style) {
        sheetText_ += text;
        return;
    }
    if (!current.takesText) {
        return;
    }
    if (!pieceOpen_) {
        const auto start = static_cast<std::uint32_t>(tree_.text.size());
        tree_.pieces.push_back({current.element, start, start,
                                context == context_.get() ? lastTagEnd_ : noPlace, noPlace});
        pieceOpen_ = true;
    }
    tree_.text += text;
    tree_.pieces.back().textEnd = static_cast<std::uint32_t>(tree_.text.size());
}

void Scanner::closePiece(std::uint32_t place) {
    if (pieceOpen_) {
        Piece& piece = tree_.pieces.back();
        piece.sourceEnd = place;
        if (place == noPlace) {
            piece.sourceStart = noPlace;
        }
        pieceOpen_ = false;
    }
}

void Scanner::startElement(void* data, const xmlChar* name, const xmlChar* /*prefix*/,
                           const xmlChar* uri, int namespaceCount, const xmlChar** /*namespaces*/,
                           int attributeCount, int /*defaultedCount*/, const xmlChar** attributes) {
    guarded(data, [&](Scanner& scanner) {
        scanner.begin(static_cast<xmlParserCtxtPtr>(data), name, uri,
                      static_cast<unsigned>(namespaceCount), static_cast<unsigned>(attributeCount),
                      attributes);
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

} // namespace

Tree scan(const std::string& source, std::string_view name, const ScanLimits& limits) {
    return Scanner(source, name, limits).run();
}

} // namespace host::svg
