// SPDX-License-Identifier: MIT
// Reading and walking a drawing of 100,000 text runs, against libxml2's bare parse of the same
// text, alternating in one run. Also saving it with one of its faces replaced.
#include "host/documents/svg/svgreader.h"

#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

constexpr int texts = 50'000; // two runs each

/// As drawing programs write them: style attributes, classes, presentation attributes by turns.
const std::string& drawing() {
    static const std::string text = [] {
        std::string result =
            "<svg xmlns='http://www.w3.org/2000/svg' "
            "xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape'><style>"
            ".a{font-family:'Foo Sans',sans-serif;font-weight:bold}.b{font-family:Bar}</style>"
            "<g inkscape:groupmode='layer' inkscape:label='L'>";
        for (int i = 0; i < texts; ++i) {
            const std::string number = std::to_string(i);
            result += "<g transform='translate(" + number + ",1)'><text id='t" + number + "' x='" +
                      number + "' y='20' ";
            switch (i % 3) {
            case 0:
                result += "style=\"font-style:normal;font-weight:normal;font-size:" +
                          std::to_string(8 + i % 97) + "px;line-height:1.25;font-family:'Family " +
                          std::to_string(i % 40) + "';fill:#000000;fill-opacity:1;stroke:none\"";
                break;
            case 1:
                result += "class='a'";
                break;
            default:
                result += "class='b' font-family='Family " + std::to_string(i % 40) + "'";
                break;
            }
            result += ">Some words <tspan font-style='italic' dy='1.2em'>and more " + number +
                      "</tspan></text></g>\n";
        }
        return result + "</g></svg>";
    }();
    return text;
}

std::size_t walk(const host::Document& document) {
    std::size_t visible = 0;
    for (const host::Layer& layer : document.layers()) {
        for (host::ArtId id = document.art(layer.topGroup).firstChild; id != host::noArt;
             id = document.art(id).nextSibling) {
            for (const host::TextRun& run : document.runsOf(id)) {
                visible += run.visible && !document.faceOf(run).family.empty() ? 1 : 0;
            }
        }
    }
    return visible;
}

void parseOnly() {
    xmlFreeDoc(xmlReadMemory(drawing().data(), static_cast<int>(drawing().size()), "x", nullptr,
                             XML_PARSE_NONET));
}

void survey() {
    const host::Document document = host::readSvg(drawing(), "x.svg");
    if (walk(document) != std::size_t{2} * texts) {
        std::abort();
    }
}

double secondsOf(void (*work)()) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void SurveyAgainstParse(benchmark::State& state) {
    drawing();
    double surveyTime = 0;
    double parse = 0;
    for (auto _ : state) {
        const double first = secondsOf(survey);
        parse += secondsOf(parseOnly);
        surveyTime += first;
        state.SetIterationTime(first);
    }
    state.counters["libxml2_ms"] = 1000 * parse / static_cast<double>(state.iterations());
    state.counters["survey_ms"] = 1000 * surveyTime / static_cast<double>(state.iterations());
    state.counters["ratio"] = surveyTime / parse;
}
BENCHMARK(SurveyAgainstParse)->UseManualTime()->Unit(benchmark::kMillisecond);

void WalkOnly(benchmark::State& state) {
    const host::Document document = host::readSvg(drawing(), "x.svg");
    for (auto _ : state) {
        benchmark::DoNotOptimize(walk(document));
    }
}
BENCHMARK(WalkOnly)->Unit(benchmark::kMillisecond);

void SaveWithOneFamilyReplaced(benchmark::State& state) {
    host::Document document = host::readSvg(drawing(), "x.svg");
    host::Face face;
    face.family = "New";
    face.style = "Regular";
    for (host::RunId id = 0; id < document.runs().size(); ++id) {
        if (document.faceOf(document.run(id)).family == "Family 3") {
            document.replaceFace(id, face);
        }
    }
    const auto file = std::filesystem::temp_directory_path() /
                      ("glyphora-benchmark-" + std::to_string(::getpid()) + ".svg");
    for (auto _ : state) {
        document.save(file);
    }
    std::filesystem::remove(file);
}
BENCHMARK(SaveWithOneFamilyReplaced)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
