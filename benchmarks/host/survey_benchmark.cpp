// SPDX-License-Identifier: MIT
// What a plug-in's walk over a drawing of 100,000 text runs costs through the suite tables, beside
// what libxml2 needs to parse the same file.
#include "ate/itext.h"
#include "host/documents/xmlhandles.h"
#include "host/suites/application.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string>

namespace {

constexpr int frameCount = 1000;
constexpr int runsPerFrame = 100;

const std::string& drawing() {
    static const std::string text = [] {
        std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\"><g>";
        for (int frame = 0; frame < frameCount; ++frame) {
            svg += "<text x=\"10\" y=\"" + std::to_string(frame) + "\">";
            for (int run = 0; run < runsPerFrame; ++run) {
                // Neighbours differ, so that each is a run of its own.
                svg += "<tspan style=\"font-family:'Family " + std::to_string(run % 37) +
                       "';font-weight:" + std::to_string(400 + 300 * (frame % 2)) + "\">word " +
                       std::to_string(run) + "</tspan>";
            }
            svg += "</text>";
        }
        return svg + "</g></svg>";
    }();
    return text;
}

class SilentFrontend : public host::Frontend {
public:
    void showAlert(const host::Alert&) override {}
    void reportError(std::string_view) override {}
    void reportMisbehaviour(std::string_view, std::string_view) override { ++misbehaviour; }
    int misbehaviour = 0;
};

SPErr doNothing(const char*, const char*, void*) {
    return kNoErr;
}

/// A host with the drawing open, and all suites acquired for a plug-in that is being served.
struct Stage {
    Stage() : guest(application.core().addBuiltIn("survey", doNothing)) {
        guest.startUp();
        serving.emplace(application.core(), &guest);
        sSPBasic = &host::Core::basicSuite();
#define ACQUIRE(type, pointer, name, version)                                                      \
    {                                                                                              \
        const void* table = nullptr;                                                               \
        sSPBasic->AcquireSuite(name, version, &table);                                             \
        (pointer) = static_cast<const type*>(table);                                               \
    }
        GLYPHORA_BASIC_SUITES(ACQUIRE)
        GLYPHORA_IMPORT_SUITES(ACQUIRE)
#undef ACQUIRE
        application.documents().add("survey.svg", host::readSvg(drawing(), "survey.svg"));
    }

    SilentFrontend frontend;
    host::Application application{frontend,
                                  {{}, {}, [] { return std::vector<host::InstalledFace>(); }}};
    host::Plugin& guest;
    std::optional<host::Core::ServeScope> serving;
};

/// What is asked of each font.
void readFont(const ATE::IFont& font) {
    AIFontKey key = nullptr;
    std::array<char, 1000> name;
    AIFontStyleRecord record;
    ATE::check(sAIFont->FontKeyFromFont(font.GetRef(), &key));
    for (const auto call : {sAIFont->GetPostScriptFontName, sAIFont->GetFontStyleName,
                            sAIFont->GetFontFamilyName, sAIFont->GetUserFontName}) {
        ATE::check(call(key, name.data(), static_cast<std::int32_t>(name.size())));
        benchmark::DoNotOptimize(name);
    }
    ATE::check(sAIFont->GetFontStyle(key, &record));
    benchmark::DoNotOptimize(record);
}

std::int64_t readFrame(AIArtHandle art) {
    ATE::TextFrameRef ref = nullptr;
    ATE::check(sAITextFrame->GetATETextFrame(art, &ref));
    const ATE::ITextFrame frame(ref);
    std::int64_t runs = 0;
    const ATE::ITextRunsIterator iterator = frame.GetTextRange(true).GetTextRunsIterator();
    for (; !iterator.IsDone(); iterator.Next(), ++runs) {
        const ATE::ITextRange run = iterator.Item();
        benchmark::DoNotOptimize(run.HasLocalCharFeatures());
        const ATE::IArrayFontRef fonts = run.GetCharInspector().GetFont();
        for (std::int32_t i = 0; i < fonts.GetSize(); ++i) {
            readFont(fonts.Item(i));
        }
    }
    return runs;
}

void SurveyThroughTheSuites(benchmark::State& state) {
    Stage stage;
    std::int64_t runs = 0;
    for (auto _ : state) {
        runs = 0;
        AILayerHandle layer = nullptr;
        AIArtHandle art = nullptr;
        ATE::check(sAILayer->GetFirstLayer(&layer));
        ATE::check(sAIArt->GetFirstArtOfLayer(layer, &art));
        ATE::check(sAIArt->GetArtFirstChild(art, &art));
        for (; art != nullptr; ATE::check(sAIArt->GetArtSibling(art, &art))) {
            runs += readFrame(art);
        }
    }
    if (runs != std::int64_t{frameCount} * runsPerFrame || stage.frontend.misbehaviour != 0) {
        state.SkipWithError("the walk did not see every run");
    }
    state.SetItemsProcessed(state.iterations() * runs);
}
BENCHMARK(SurveyThroughTheSuites)->Unit(benchmark::kMillisecond);

void ParseBesideIt(benchmark::State& state) {
    const std::string& text = drawing();
    for (auto _ : state) {
        const host::xml::Document document(xmlReadMemory(text.data(), static_cast<int>(text.size()),
                                                         "survey.svg", nullptr, XML_PARSE_NONET));
        if (document == nullptr) {
            state.SkipWithError("the drawing is not well-formed");
            break;
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(ParseBesideIt)->Unit(benchmark::kMillisecond);

void ReadIntoTheModelBesideIt(benchmark::State& state) {
    for (auto _ : state) {
        const host::Document document = host::readSvg(drawing(), "survey.svg");
        benchmark::DoNotOptimize(document.runs().size());
    }
}
BENCHMARK(ReadIntoTheModelBesideIt)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
