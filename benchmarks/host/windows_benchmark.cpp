// SPDX-License-Identifier: MIT
// Drawing a page of a long list in a window in memory: the last missing fonts by the plug-in's own
// routine, and the first fonts to choose from in their faces, which have come before.
#include "GlyphoraReplaceDialog.h"
#include "benchmarks/common/dialogstage.h"
#include "host/qt/windows.h"
#include "host/suites/documentsamples.h"
#include "system/displays.h"
#include "tests/support/temporaryfolder.h"

#include <benchmark/benchmark.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QScrollBar>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

struct WindowedStage : Stage {
    WindowedStage(std::int64_t missing, std::int64_t installed) : Stage(missing, installed) {
        application.dialogs().setView(windows.get());
    }
    ~WindowedStage() { application.dialogs().setView(nullptr); }

    /// Has `use` done with the list of the dialog that is shown next, and cancels it.
    void whenShown(const std::function<void(QAbstractItemView&)>& use) {
        QTimer::singleShot(0, qApp, [use] {
            auto* const window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            use(*window->findChild<QAbstractItemView*>());
            window->reject();
        });
    }

    std::unique_ptr<host::Windows> windows{glyphoraMakeWindows(
        application.dialogs(), host::fontSourceOf(application), {}, sys::offscreenPlatform)};
};

void redraw(benchmark::State& state, QAbstractItemView& view) {
    QCoreApplication::processEvents(); // it is laid out and exposed
    for (auto _ : state) {
        view.viewport()->repaint();
    }
    const QModelIndex first = view.indexAt({});
    state.counters["rows"] =
        static_cast<double>(view.viewport()->height()) / view.visualRect(first).height();
}

void RedrawMissingFonts(benchmark::State& state) {
    WindowedStage stage(state.range(0), 0);
    GlyphoraDialog dialog;
    stage.whenShown([&](QAbstractItemView& view) {
        view.scrollToBottom();
        redraw(state, view);
    });
    stage.run(dialog);
}
BENCHMARK(RedrawMissingFonts)->Arg(500)->Arg(4000)->Unit(benchmark::kMicrosecond);

void RedrawFontsInTheirFaces(benchmark::State& state) {
    const testsupport::TemporaryFolder folder;
    WindowedStage stage(1, state.range(0));
    stage.windows->savePictures(folder.path()); // waits for the faces
    GlyphoraReplaceDialog dialog;
    stage.whenShown([&](QAbstractItemView& view) { redraw(state, view); });
    dialog.Modal(stage.plugin.ref(), "Glyphora", 17001, kADMModalDialogStyle, 0);
}
BENCHMARK(RedrawFontsInTheirFaces)->Arg(500)->Arg(4000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
