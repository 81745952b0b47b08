// SPDX-License-Identifier: MIT
// The dialog of many missing fonts with three candidates each, in the host's dialog manager:
// opening it, making its rows anew, and drawing a page of them. Twice the fonts, twice the time.
#include "benchmarks/common/dialogstage.h"

#include <benchmark/benchmark.h>

#include <functional>

namespace {

constexpr std::size_t pageSize = 39;

/// Uses the dialog as it is told, then cancels it.
class User : public host::DialogView {
public:
    explicit User(host::Dialogs& dialogs) : dialogs_(dialogs) {}
    void runModal(host::Dialog& dialog) override {
        use(dialog);
        dialogs_.giveUp(dialog);
    }
    void endModal(host::Dialog&) override {}
    void dialogChanged(host::Dialog&) override {}
    void itemChanged(host::Item&) override {}
    void forget(host::Dialog&) override {}
    const host::TextMetrics& metrics() const override { return metrics_; }

    std::function<void(host::Dialog&)> use = [](host::Dialog&) {};

private:
    host::Dialogs& dialogs_;
    host::FixedMetrics metrics_;
};

/// The stage, and a user on it.
struct UsedStage : Stage {
    explicit UsedStage(std::int64_t fontCount) : Stage(fontCount) {
        application.dialogs().setView(&user);
    }
    ~UsedStage() { application.dialogs().setView(nullptr); }

    User user{application.dialogs()};
};

std::deque<std::unique_ptr<host::Row>>& rowsOf(host::Dialog& dialog) {
    return dialog.item(fontListItem)->tree->top().rows;
}

void OpenAndCancel(benchmark::State& state) {
    UsedStage stage(state.range(0));
    std::size_t rows = 0;
    stage.user.use = [&](host::Dialog& dialog) { rows = rowsOf(dialog).size(); };
    for (auto _ : state) {
        GlyphoraDialog dialog;
        stage.run(dialog);
    }
    if (rows != stage.fonts.size()) {
        state.SkipWithError("not every font has its row");
    }
}
BENCHMARK(OpenAndCancel)->RangeMultiplier(2)->Range(512, 4096)->Unit(benchmark::kMillisecond);

void MakeTheRowsAnew(benchmark::State& state) {
    UsedStage stage(state.range(0));
    GlyphoraDialog dialog;
    stage.user.use = [&](host::Dialog& shown) {
        for (const auto& row : rowsOf(shown)) {
            stage.application.dialogs().setExpanded(*row, true);
        }
        for (auto _ : state) {
            dialog.synchronizeDialog();
        }
    };
    stage.run(dialog);
}
BENCHMARK(MakeTheRowsAnew)->RangeMultiplier(2)->Range(512, 4096)->Unit(benchmark::kMillisecond);

void DrawAPage(benchmark::State& state) {
    UsedStage stage(2000);
    GlyphoraDialog dialog;
    stage.user.use = [&](host::Dialog& shown) {
        for (auto _ : state) {
            for (std::size_t i = 0; i < pageSize; ++i) {
                host::RecordingCanvas canvas;
                stage.application.dialogs().draw(*rowsOf(shown)[i], canvas, 740, 19);
                benchmark::DoNotOptimize(canvas.drawn());
            }
        }
    };
    stage.run(dialog);
}
BENCHMARK(DrawAPage)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
