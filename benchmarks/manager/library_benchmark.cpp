// SPDX-License-Identifier: MIT
// A library of 100,000 font files (GLYPHORA_BENCHMARK_FILES: as many): the first scan beside
// fontconfig's own of the same files, the scan of what is unchanged, opening, and looking names up.
#include "benchmarks/manager/stage.h"
#include "faces/namekey.h"
#include "manager/library/update.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

using namespace manager;
using benchmarks::stage;

namespace {

constexpr std::size_t asked = 1000;

double fontconfigSeconds = 0;

FontReaderLimits limits() {
    FontReaderLimits limits;
    limits.processes = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
    return limits;
}

void scanFirstByFontconfig(benchmark::State& state) {
    const auto& world = stage().world;
    const std::string root = world.root();
    std::ofstream(root + "/peer.conf")
        << "<?xml version=\"1.0\"?><fontconfig><dir>" << world.library() << "</dir><cachedir>"
        << root << "/peercache</cachedir></fontconfig>";
    const std::string command = "FONTCONFIG_FILE='" + root + "/peer.conf' fc-cache";
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        if (std::system(command.c_str()) != 0) { // NOLINT(concurrency-mt-unsafe): one thread
            state.SkipWithError("fc-cache failed");
        }
        fontconfigSeconds = benchmarks::secondsSince(start);
    }
}
BENCHMARK(scanFirstByFontconfig)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void scanFirst(benchmark::State& state) {
    auto& on = stage();
    const std::vector<std::string> folders{on.world.library()};
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        Library library(on.world.places());
        const UpdateReport report = updateLibrary(library, folders, limits());
        if (report.read != on.fonts.files || report.problems.size() != on.fonts.bad) {
            state.SkipWithError("not all files were read");
        }
        state.counters["ofFcCache"] = benchmarks::secondsSince(start) / fontconfigSeconds;
    }
    state.counters["indexMB"] =
        static_cast<double>(std::filesystem::file_size(on.world.places().database())) / 1e6;
}
BENCHMARK(scanFirst)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void scanUnchanged(benchmark::State& state) {
    auto& on = benchmarks::scannedStage();
    const std::vector<std::string> folders{on.world.library()};
    for (auto _ : state) {
        Library library(on.world.places());
        const UpdateReport report = updateLibrary(library, folders, limits());
        if (report.unchanged != on.fonts.files) {
            state.SkipWithError("not all files were passed over");
        }
    }
}
BENCHMARK(scanUnchanged)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();

// In parts of a megabyte; how much memory the process has of its own.
double privateMemory() {
    std::ifstream rollup("/proc/self/smaps_rollup");
    for (std::string line; std::getline(rollup, line);) {
        if (line.starts_with("Private_Dirty:")) {
            return std::stod(line.substr(line.find(':') + 1)) / 1000;
        }
    }
    return 0;
}

void openAndAsk(benchmark::State& state) {
    auto& on = benchmarks::scannedStage();
    const std::string& name = on.fonts.postScriptNames.front();
    for (auto _ : state) {
        const auto library = openLibrary(on.world.places(), {}, [](const std::string&) {});
        if (library->findByPostScriptName(name).empty()) {
            state.SkipWithError("a name was not found");
        }
    }
}
BENCHMARK(openAndAsk)->Unit(benchmark::kMillisecond)->UseRealTime();

// One in five is not there; for that the family is asked, too.
void lookUpOneThousandNames(benchmark::State& state) {
    Library library(benchmarks::scannedStage().world.places());
    const double before = privateMemory();
    const std::vector<std::string> names = benchmarks::spreadNames(asked);
    for (auto _ : state) {
        const Reading reading = library.reading();
        std::size_t found = 0;
        for (std::size_t i = 0; i < asked; ++i) {
            if (i % 5 != 0) {
                found += library.findByPostScriptName(names[i]).empty() ? 0 : 1;
            } else if (library.findByPostScriptName(names[i] + "Absent").empty()) {
                found += library.findByFamily(faces::nameKey(names[i])).size();
            }
        }
        if (found != asked / 5 * 4) {
            state.SkipWithError("not all names were found");
        }
    }
    state.counters["privateMB"] = privateMemory() - before;
}
BENCHMARK(lookUpOneThousandNames)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
