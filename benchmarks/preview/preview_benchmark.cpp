// SPDX-License-Identifier: MIT
// A page of a hundred lines of 18 characters at 24 pixels: of one face, of two in turn (which are
// then opened anew each time), and kept ones.
#include "preview/previewer.h"

#include <benchmark/benchmark.h>
#include <poll.h>
#include <string>

using namespace preview;

namespace {

constexpr int lines = 100;

bool drawPage(Previewer& previewer, int page, int faces) {
    const std::string files[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                 "/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf"};
    for (int line = 0; line < lines; ++line) {
        std::string text = "Hamburgefons " + std::to_string(10'000 + page * lines % 90'000 + line);
        static_cast<void>(
            previewer.request({.file = files[line % faces], .text = text.substr(0, 18)}));
    }
    int drawn = 0;
    for (int answered = 0; answered < lines;) {
        pollfd event{previewer.descriptor(), POLLIN, 0};
        poll(&event, 1, -1);
        for (const Finished& finished : previewer.take()) {
            ++answered;
            drawn += finished.answer->problem.empty() ? 1 : 0;
        }
    }
    return drawn == lines;
}

void drawNewPages(benchmark::State& state) {
    Previewer previewer({.cached = 0});
    int page = 0;
    for (auto _ : state) {
        if (!drawPage(previewer, ++page, static_cast<int>(state.range(0)))) {
            state.SkipWithError("not all lines were drawn");
        }
    }
    state.SetItemsProcessed(state.iterations() * lines);
}
BENCHMARK(drawNewPages)
    ->ArgName("faces")
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void showAPageAgain(benchmark::State& state) {
    Previewer previewer(PreviewSettings{});
    for (auto _ : state) {
        if (!drawPage(previewer, 0, 1)) {
            state.SkipWithError("not all lines were drawn");
        }
    }
    state.SetItemsProcessed(state.iterations() * lines);
}
BENCHMARK(showAPageAgain)->Unit(benchmark::kMillisecond)->UseRealTime();

void startTheProcess(benchmark::State& state) {
    for (auto _ : state) {
        Previewer previewer(PreviewSettings{});
        static_cast<void>(previewer.request({.file = "/dev/null"}));
        while (previewer.take().empty()) {
            pollfd event{previewer.descriptor(), POLLIN, 0};
            poll(&event, 1, -1);
        }
    }
}
BENCHMARK(startTheProcess)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
