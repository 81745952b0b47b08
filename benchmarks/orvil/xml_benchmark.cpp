// SPDX-License-Identifier: MIT
// Visiting every node of a reply of some 4 MB, with its name and its text, beside a walk over
// libxml2's own tree that takes the same. Reading the text is timed apart, so that it hides
// nothing.
#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlhandles.h"
#include "ratios.h"

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <string>

using Orvil::LibXml::Document;
using Orvil::LibXml::Text;

namespace {

const std::string& reply() {
    static const std::string text = [] {
        std::string made = "<cmd version=\"2.0\"><fontRequestReply><fonts>\n";
        for (int i = 0; i < 10000; ++i) {
            const std::string number = std::to_string(i);
            // NOLINTBEGIN(bugprone-suspicious-missing-comma): long pieces take several lines
            for (const char* piece :
                 {"  <font syncID=\"", "#", "\">\n    <psName>Family-Style", "#",
                  "</psName>\n    <type>OT_TT</type>\n    <familyName>A Family ", "#",
                  "</familyName>\n    <styleName>Condensed Bold</styleName>\n"
                  "    <count>1</count>\n    <isActive>false</isActive>\n"
                  "    <typeMatchingCount>1</typeMatchingCount>\n"
                  "    <fontInfos><fontInfo><containerID>",
                  "#", "</containerID></fontInfo></fontInfos>\n  </font>\n"}) {
                // NOLINTEND(bugprone-suspicious-missing-comma)
                made += *piece == '#' ? number : piece;
            }
        }
        return made + "</fonts></fontRequestReply></cmd>";
    }();
    return text;
}

std::size_t visitWrapped(const Orvil::IXmlNode* node) {
    std::size_t sum = 0;
    for (; node != nullptr; node = node->getNextNode()) {
        sum += node->getName().size();
        if (node->isText()) {
            sum += node->getContent().size();
        }
        if (const Orvil::IXmlNode* child = node->getFirstChild()) {
            sum += visitWrapped(child);
        }
    }
    return sum;
}

Document readBare() {
    return Document(xmlReadMemory(reply().data(), static_cast<int>(reply().size()), nullptr,
                                  nullptr, XML_PARSE_NONET));
}

std::string owned(const xmlChar* text) {
    return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
}

std::size_t visitBare(const xmlNode* node) {
    std::size_t sum = 0;
    for (; node != nullptr; node = node->next) {
        sum += owned(node->name).size();
        if (xmlNodeIsText(node) != 0) {
            const Text content(xmlNodeGetContent(node));
            sum += owned(content.get()).size();
        }
        if (node->children != nullptr) {
            sum += visitBare(node->children);
        }
    }
    return sum;
}

/// The same by the pointers alone, which no interface of texts can be as fast as.
std::size_t visitPointers(const xmlNode* node) {
    std::size_t sum = 0;
    for (; node != nullptr; node = node->next) {
        sum += 1 + visitPointers(node->children);
    }
    return sum;
}

void xml_visit_first(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Orvil::XmlDocumentHolder document;
        document->parseString(reply());
        state.ResumeTiming();
        benchmark::DoNotOptimize(visitWrapped(document->getRootNode()));
        state.PauseTiming();
        document->cleanup();
        state.ResumeTiming();
    }
}
BENCHMARK(xml_visit_first);

void xml_visit_again(benchmark::State& state) {
    const Orvil::XmlDocumentHolder document;
    document->parseString(reply());
    for (auto _ : state) {
        benchmark::DoNotOptimize(visitWrapped(document->getRootNode()));
    }
}
BENCHMARK(xml_visit_again);

void xml_visit_bare_first(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Document document = readBare();
        state.ResumeTiming();
        benchmark::DoNotOptimize(visitBare(xmlDocGetRootElement(document.get())));
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(xml_visit_bare_first);

void xml_visit_bare_again(benchmark::State& state) {
    const Document document = readBare();
    for (auto _ : state) {
        benchmark::DoNotOptimize(visitBare(xmlDocGetRootElement(document.get())));
    }
}
BENCHMARK(xml_visit_bare_again);

void xml_visit_pointers(benchmark::State& state) {
    const Document document = readBare();
    for (auto _ : state) {
        benchmark::DoNotOptimize(visitPointers(xmlDocGetRootElement(document.get())));
    }
}
BENCHMARK(xml_visit_pointers);

void xml_whole(benchmark::State& state) {
    for (auto _ : state) {
        const Orvil::XmlDocumentHolder document;
        document->parseString(reply());
        benchmark::DoNotOptimize(visitWrapped(document->getRootNode()));
    }
}
BENCHMARK(xml_whole);

void xml_whole_bare(benchmark::State& state) {
    for (auto _ : state) {
        Document document = readBare();
        benchmark::DoNotOptimize(visitBare(xmlDocGetRootElement(document.get())));
        document.reset();
    }
}
BENCHMARK(xml_whole_bare);

const bool expected = ratios::atMost("xml_visit_first", "xml_visit_bare_first", 1.5) &&
                      ratios::atMost("xml_visit_again", "xml_visit_bare_again", 1.5) &&
                      ratios::atMost("xml_whole", "xml_whole_bare", 1.5);

} // namespace
