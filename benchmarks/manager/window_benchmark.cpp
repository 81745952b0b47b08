// SPDX-License-Identifier: MIT
// The window over a library of 100,000 files: its first page, a letter typed, and how long its loop
// is held while it is scrolled and typed into, alone and while news come. What an event takes of
// the loop is told in the time of the clock and of the processor; on a busy machine only the latter
// is the window's own.
#include "benchmarks/manager/stage.h"
#include "manager/cli/announce.h"
#include "manager/cli/groupchange.h"
#include "manager/qt/groupfaces.h"
#include "manager/qt/librarywindow.h"
#include "tests/support/privatebus/privatebus.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <ctime>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

using namespace manager;

namespace {

/// Seconds of a clock.
double now(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// How long each delivery of the loop takes.
struct Deliveries {
    std::size_t count = 0;
    std::size_t late = 0; ///< longer than a frame, by the clock
    std::size_t heavy = 0;
    double longest = 0; ///< seconds
    double heaviest = 0;

    void add(double time, double work) {
        constexpr double frame = 0.016;
        ++count;
        late += time > frame ? 1 : 0;
        heavy += work > frame ? 1 : 0;
        longest = std::max(longest, time);
        heaviest = std::max(heaviest, work);
    }
};

class CountingApplication : public QApplication {
public:
    using QApplication::QApplication;
    Deliveries deliveries;

    bool notify(QObject* receiver, QEvent* event) override {
        if (depth_ != 0) {
            return QApplication::notify(receiver, event);
        }
        const double time = now(CLOCK_MONOTONIC);
        const double work = now(CLOCK_THREAD_CPUTIME_ID);
        ++depth_;
        const bool known = QApplication::notify(receiver, event);
        --depth_;
        deliveries.add(now(CLOCK_MONOTONIC) - time, now(CLOCK_THREAD_CPUTIME_ID) - work);
        return known;
    }

private:
    int depth_ = 0;
};

CountingApplication& application() {
    static char name[] = "window_benchmark";
    static char option[] = "-platform";
    static char platform[] = "offscreen";
    static std::array<char*, 4> arguments{name, option, platform, nullptr};
    static int count = 3;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static auto& one = *new CountingApplication(count, arguments.data()); // outlives statics
    return one;
}

/// A window whose first page is drawn.
class Shown {
public:
    Shown() {
        std::optional<QString> ended;
        window_.whenShown([&ended](const QString& problem) { ended = problem; });
        window_.show();
        while (!ended) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        if (!ended->isEmpty()) {
            throw std::runtime_error(ended->toStdString());
        }
        QCoreApplication::processEvents(); // painted
    }
    [[nodiscard]] LibraryWindow& window() { return window_; }

    void press(QWidget& at, int key, const QString& text = {}) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QCoreApplication::postEvent(&at, new QKeyEvent(type, key, {}, text));
        }
    }
    void turnWheel(int by) {
        QWidget& list = *window_.list().viewport();
        const QPointF place(list.rect().center());
        QCoreApplication::postEvent(&list,
                                    new QWheelEvent(place, list.mapToGlobal(place), {}, {0, by}, {},
                                                    {}, Qt::NoScrollPhase, false));
    }

private:
    LibraryWindow window_{{benchmarks::scannedStage().world.places(), "/bin/true", {}}};
};

void prepare() {
    static_cast<void>(benchmarks::scannedStage());
    application();
}

// From nothing to the first rows.
void showFirstPage(benchmark::State& state) {
    prepare();
    for (auto _ : state) {
        auto shown = std::make_unique<Shown>();
        state.PauseTiming();
        shown.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(showFirstPage)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

// Letter by letter, each until it is painted.
void typeLetters(benchmark::State& state) {
    prepare();
    Shown shown;
    const std::string name = benchmarks::spreadNames(3).back().substr(0, 4);
    std::size_t at = 0;
    double longest = 0;
    for (auto _ : state) {
        const double before = now(CLOCK_MONOTONIC);
        if (at == name.size()) {
            at = 0;
            shown.window().searchField().clear();
        } else {
            shown.press(shown.window().searchField(), 0, QString(QLatin1Char(name[at++])));
        }
        QCoreApplication::processEvents();
        longest = std::max(longest, now(CLOCK_MONOTONIC) - before);
    }
    state.counters["worstMs"] = longest * 1000;
}
BENCHMARK(typeLetters)->Unit(benchmark::kMillisecond);

// What a person does in some seconds; with argument 1 while a scan or a script tells news.
void scrollAndType(benchmark::State& state) {
    prepare();
    const testsupport::PrivateBus bus;
    Shown shown;
    LibraryWindow& window = shown.window();
    window.list().setExpanded(window.model().index(3, 0), true);
    Deliveries& deliveries = application().deliveries;
    deliveries = {};
    const std::string name = benchmarks::spreadNames(3).back().substr(0, 4);
    constexpr int steps = 480; // of a frame's length each
    constexpr int down = -120;
    for (auto _ : state) {
        for (int step = 0; step < steps; ++step) {
            const double next = now(CLOCK_MONOTONIC) + 0.016;
            shown.turnWheel(step / 120 % 2 == 0 ? down : -down);
            if (step % 12 == 0) {
                const auto letter = static_cast<std::size_t>(step / 12 % 8);
                if (letter < name.size()) {
                    shown.press(window.searchField(), 0, QString(QLatin1Char(name[letter])));
                } else {
                    shown.press(window.searchField(), Qt::Key_Backspace);
                }
            }
            if (state.range(0) != 0 && step % 30 == 0) {
                postLibraryChanged();
            }
            do {
                QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
            } while (now(CLOCK_MONOTONIC) < next);
        }
    }
    state.counters["deliveries"] = static_cast<double>(deliveries.count);
    state.counters["over16ms"] = static_cast<double>(deliveries.late);
    state.counters["worstMs"] = deliveries.longest * 1000;
    state.counters["over16msOfWork"] = static_cast<double>(deliveries.heavy);
    state.counters["worstMsOfWork"] = deliveries.heaviest * 1000;
}
BENCHMARK(scrollAndType)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

// The numbers beside so many collections, each with the same share of the library.
void countCollections(benchmark::State& state) {
    Library library(benchmarks::scannedStage().world.places());
    const FaceTable table(library);
    Groups groups;
    constexpr std::size_t share = 500; // containers
    const auto containers = library.containers();
    for (std::size_t i = 0; i < static_cast<std::size_t>(state.range(0)); ++i) {
        Group group{GroupKind::Collection, std::to_string(i), {}};
        for (std::size_t k = 0; k < share; ++k) {
            group.members.push_back(memberOf(containers[(i * share + k) % containers.size()]));
        }
        groups.push_back(std::move(group));
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(facesOf(table, groups));
    }
}
BENCHMARK(countCollections)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
