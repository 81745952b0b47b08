// SPDX-License-Identifier: MIT
// Resolving the faces of a document over a catalogue of 10,000 made-up fonts, and listing the
// desktop's own ones.
#include "faces/stylewords.h"
#include "host/fonts/catalogue.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

constexpr int families = 2'500;
constexpr int weights[] = {300, 400, 700, 900};

host::Face wanted(int number) {
    host::Face face;
    face.family = "Family " + std::to_string(number % families);
    face.weight = weights[number / families % 4];
    face.style = faces::styleText(face.look());
    return face;
}

std::vector<host::InstalledFace> madeUp() {
    std::vector<host::InstalledFace> faces;
    for (int i = 0; i < families * 4; ++i) {
        const host::Face face = wanted(i);
        host::InstalledFace installed;
        installed.family = face.family;
        installed.style = face.style;
        installed.postScriptName = host::conventionalPostScriptName(face.family, face.style);
        installed.fullName = face.family + " " + face.style;
        installed.file = "/fonts/" + installed.postScriptName;
        installed.weight = face.weight;
        faces.push_back(std::move(installed));
    }
    return faces;
}

/// One face per run, as if nobody remembered any: per face found and per face missed.
void Resolve(benchmark::State& state) {
    host::Catalogue catalogue(madeUp);
    std::vector<host::Face> faces;
    for (int i = 0; i < families * 4; ++i) {
        faces.push_back(wanted(i));
        if (state.range(0) != 0) {
            faces.back().family += " Missing";
        }
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(catalogue.resolve(faces[next]));
        next = next + 1 == faces.size() ? 0 : next + 1;
    }
}
BENCHMARK(Resolve)->ArgName("missing")->Arg(0)->Arg(1);

void Refresh(benchmark::State& state) {
    const std::vector<host::InstalledFace> faces = madeUp();
    host::Catalogue catalogue([&faces] { return std::vector(faces); });
    for (auto _ : state) {
        benchmark::DoNotOptimize(catalogue.refresh());
    }
}
BENCHMARK(Refresh)->Unit(benchmark::kMillisecond);

void ListTheDesktop(benchmark::State& state) {
    std::size_t count = 0;
    for (auto _ : state) {
        count = host::listInstalledFaces().size();
    }
    state.counters["fonts"] = static_cast<double>(count);
}
BENCHMARK(ListTheDesktop)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
