// SPDX-License-Identifier: MIT
// The dialog of many missing fonts with three candidates each, in the host's dialog manager:
// opening it, making its rows anew, and drawing a page of them. Twice the fonts, twice the time.
#include "GlyphoraDialog.h"
#include "PluginMain.h"
#include "host/suites/application.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <optional>

namespace {

constexpr std::size_t pageSize = 39;

class SilentFrontend : public host::Frontend {
public:
    void showAlert(const host::Alert&) override {}
    void reportError(std::string_view) override {}
    void reportMisbehaviour(std::string_view, std::string_view) override {}
};

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

VexFontSuite::FontInfos missingFonts(std::int64_t count) {
    VexFontSuite::FontInfos fonts;
    for (std::int64_t i = 0; i < count; ++i) {
        Protocol::Font& font = fonts.emplace_back(new GLY::GLYFontInfo)->font;
        font.familyName = "Family " + std::to_string(i);
        font.styleName = "Regular";
        font.count = 3;
        for (const char* const name : {"1", "2", "3"}) {
            font.fontInfos.push_back({name, font.familyName + " in the set \"Brochures " + name +
                                                "\", version 2.001, 480 glyphs"});
        }
    }
    return fonts;
}

/// The plug-in in a host, and a font manager that knows no font.
struct Stage {
    explicit Stage(std::int64_t fontCount) : fonts(missingFonts(fontCount)) {
        platform.answers = {scripted::textAnswer(
            "<cmd>answer</cmd>\n<protocolVersion>2.0</protocolVersion>\n</cmd>\n")};
        application.dialogs().setView(&user);
        plugin.startUp();
        serving.emplace(application.core(), &plugin);
    }
    ~Stage() { serving.reset(); }

    void run(GlyphoraDialog& dialog) {
        dialog.setFontData(fonts);
        platform.sent.clear();
        dialog.Modal(plugin.ref(), "Glyphora", 16000, kADMModalDialogStyle, 0);
    }

    scripted::Platform platform;
    SilentFrontend frontend;
    host::Application application{frontend,
                                  {{}, {}, [] { return std::vector<host::InstalledFace>(); }}};
    User user{application.dialogs()};
    host::Plugin& plugin = application.core().addBuiltIn("Glyphora", PluginMain, PLUGIN_RESOURCES);
    VexFontSuite::FontInfos fonts;
    std::optional<host::Core::ServeScope> serving;
};

std::deque<std::unique_ptr<host::Row>>& rowsOf(host::Dialog& dialog) {
    return dialog.item(fontListItem)->tree->top().rows;
}

void OpenAndCancel(benchmark::State& state) {
    Stage stage(state.range(0));
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
    Stage stage(state.range(0));
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
    Stage stage(2000);
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
