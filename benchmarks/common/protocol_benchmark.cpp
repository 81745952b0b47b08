// SPDX-License-Identifier: MIT
// The codec against what libxml2 alone needs for the same documents.
#include "misc/xml/libxmlhandles.h"
#include "protocolhandler.h"
#include "protocolschema.h"

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/xmlschemas.h>

#include <stdexcept>
#include <string>

namespace LibXml = Orvil::LibXml;
using namespace Protocol;

namespace {

constexpr int fontCount = 10'000;

Font makeFont(int number) {
    const std::string digits = std::to_string(number);
    Font font;
    font.syncID = "BenchmarkFamily" + digits + "-BoldItalic";
    font.type = Font::OT_TT;
    font.psName = "BenchmarkFamily" + digits + "-BoldItalic";
    font.styleName = "Bold Italic";
    font.familyName = "Benchmark Family " + digits;
    font.containerID = digits;
    return font;
}

FontList makeFonts() {
    FontList fonts;
    for (int i = 0; i < fontCount; ++i) {
        fonts.push_back(makeFont(i));
    }
    return fonts;
}

std::string element(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
}

/// A reply that tells everything of each font.
std::string makeReply() {
    std::string fonts;
    for (int i = 0; i < fontCount; ++i) {
        const Font font = makeFont(i);
        fonts +=
            "<font syncID=\"" + font.syncID + "\">" +
            element("type", Font::typeToString(font.type)) + element("psName", font.psName) +
            element("styleName", font.styleName) + element("familyName", font.familyName) +
            element("count", "1") + element("isActive", "true") +
            element("typeMatchingCount", "1") + element("isTypeMatchingActive", "true") +
            element("typeMatchingContainerID", font.containerID) +
            element("containerID", font.containerID) +
            element("fontInfos",
                    element("fontInfo", element("name", font.containerID) +
                                            element("value", font.familyName + " (4 files)"))) +
            "</font>";
    }
    return std::string("<cmd xmlns=\"") + protocolNamespace + "\">" +
           element("fontRequestReply", element("showWindow", "1") + element("fonts", fonts)) +
           "</cmd>";
}

const std::string& reply() {
    static const std::string text = makeReply();
    return text;
}

void BM_DecodeByTheCodec(benchmark::State& state) {
    Handler handler(schemaText);
    for (auto _ : state) {
        const ReplyContainer container = handler.parseReply(reply());
        if (container.fontReply->fonts.size() != fontCount) {
            throw std::logic_error("fonts are missing");
        }
    }
    state.counters["textMB"] = static_cast<double>(reply().size()) / 1e6;
}
BENCHMARK(BM_DecodeByTheCodec)->Unit(benchmark::kMillisecond);

/// Parse and schema validation alone: nothing of the document is looked at.
void BM_ParseAndValidateByLibxml2(benchmark::State& state) {
    const std::string schemaSource = schemaText;
    const LibXml::SchemaParserContext parser(
        xmlSchemaNewMemParserCtxt(schemaSource.data(), static_cast<int>(schemaSource.size())));
    const LibXml::Schema schema(xmlSchemaParse(parser.get()));
    for (auto _ : state) {
        const LibXml::Document document(xmlReadMemory(
            reply().data(), static_cast<int>(reply().size()), nullptr, nullptr, XML_PARSE_NONET));
        const LibXml::SchemaValidContext context(xmlSchemaNewValidCtxt(schema.get()));
        const int status =
            xmlSchemaValidateOneElement(context.get(), xmlDocGetRootElement(document.get()));
        if (status != 0) {
            throw std::logic_error("the reply is not valid");
        }
    }
}
BENCHMARK(BM_ParseAndValidateByLibxml2)->Unit(benchmark::kMillisecond);

void BM_EncodeByTheCodec(benchmark::State& state) {
    const FontRequest request(true, makeFonts(), "ART5", "FILC");
    for (auto _ : state) {
        benchmark::DoNotOptimize(Handler::createFontRequest(request));
    }
}
BENCHMARK(BM_EncodeByTheCodec)->Unit(benchmark::kMillisecond);

const xmlChar* toXml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// The same tree, made and written without anything between.
void BM_BuildAndSerialiseByLibxml2(benchmark::State& state) {
    const FontList fonts = makeFonts();
    const std::string expected =
        Handler::createFontRequest(FontRequest(true, fonts, "ART5", "FILC"));
    for (auto _ : state) {
        const LibXml::Document document(xmlNewDoc(BAD_CAST "1.0"));
        xmlNode* const root = xmlNewDocNode(document.get(), nullptr, BAD_CAST "cmd", nullptr);
        xmlSetNs(root, xmlNewNs(root, BAD_CAST protocolNamespace, nullptr));
        xmlDocSetRootElement(document.get(), root);
        xmlNode* const kind = xmlNewChild(root, nullptr, BAD_CAST "fontRequest", nullptr);
        xmlNewTextChild(kind, nullptr, BAD_CAST "mustMatchFontType", BAD_CAST "true");
        xmlNewTextChild(kind, nullptr, BAD_CAST "targetApp", BAD_CAST "ART5");
        xmlNewTextChild(kind, nullptr, BAD_CAST "targetClass", BAD_CAST "FILC");
        xmlNode* const list = xmlNewChild(kind, nullptr, BAD_CAST "fonts", nullptr);
        for (const Font& font : fonts) {
            xmlNode* const node = xmlNewChild(list, nullptr, BAD_CAST "font", nullptr);
            xmlNewProp(node, BAD_CAST "syncID", toXml(font.syncID));
            xmlNewTextChild(node, nullptr, BAD_CAST "psName", toXml(font.psName));
            xmlNewTextChild(node, nullptr, BAD_CAST "type", BAD_CAST "OT_TT");
            xmlNewTextChild(node, nullptr, BAD_CAST "familyName", toXml(font.familyName));
            xmlNewTextChild(node, nullptr, BAD_CAST "styleName", toXml(font.styleName));
        }
        xmlChar* memory = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(document.get(), &memory, &size, "UTF-8");
        const LibXml::Text owner(memory);
        if (expected != reinterpret_cast<const char*>(memory)) {
            throw std::logic_error("the trees differ");
        }
    }
}
BENCHMARK(BM_BuildAndSerialiseByLibxml2)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
