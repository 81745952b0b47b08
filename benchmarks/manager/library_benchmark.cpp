// SPDX-License-Identifier: MIT
// A library of 100,000 font files (GLYPHORA_BENCHMARK_FILES: as many): the first scan beside
// fontconfig's own of the same files, the scan of what is unchanged, opening, and looking names up.
#include "benchmarks/manager/manyfonts.h"
#include "faces/namekey.h"
#include "manager/library/update.h"
#include "tests/support/temporaryfolder.h"

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

namespace {

constexpr std::uint32_t seed = 1;
constexpr std::size_t asked = 1000;

std::size_t fileCount() {
    const char* text = std::getenv("GLYPHORA_BENCHMARK_FILES");
    return text == nullptr ? 100'000 : std::stoul(text);
}

/// The files, and the index that the first scan makes of them.
struct Stage {
    testsupport::TemporaryFolder folder;
    std::vector<std::string> library{(folder / "library").string()};
    benchmarks::ManyFonts fonts = benchmarks::makeManyFonts(library.front(), fileCount(), seed);
    Places places{(folder / "data").string()};
    double fontconfigSeconds = 0;
};

Stage& stage() {
    static Stage stage;
    return stage;
}

double seconds(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

FontReaderLimits limits() {
    FontReaderLimits limits;
    limits.processes = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
    return limits;
}

void scanFirstByFontconfig(benchmark::State& state) {
    Stage& on = stage();
    const std::string root = on.folder.path().string();
    std::ofstream(root + "/fonts.conf")
        << "<?xml version=\"1.0\"?><fontconfig><dir>" << on.library.front() << "</dir><cachedir>"
        << root << "/cache</cachedir></fontconfig>";
    const std::string command = "FONTCONFIG_FILE='" + root + "/fonts.conf' fc-cache";
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        if (std::system(command.c_str()) != 0) { // NOLINT(concurrency-mt-unsafe): one thread
            state.SkipWithError("fc-cache failed");
        }
        on.fontconfigSeconds = seconds(start);
    }
}
BENCHMARK(scanFirstByFontconfig)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void scanFirst(benchmark::State& state) {
    Stage& on = stage();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        Library library(on.places);
        const UpdateReport report = updateLibrary(library, on.library, limits());
        if (report.read != on.fonts.files || report.problems.size() != on.fonts.bad) {
            state.SkipWithError("not all files were read");
        }
        state.counters["ofFcCache"] = seconds(start) / on.fontconfigSeconds;
    }
    state.counters["indexMB"] =
        static_cast<double>(std::filesystem::file_size(on.places.database())) / 1e6;
}
BENCHMARK(scanFirst)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void scanUnchanged(benchmark::State& state) {
    Stage& on = stage();
    for (auto _ : state) {
        Library library(on.places);
        const UpdateReport report = updateLibrary(library, on.library, limits());
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
    Stage& on = stage();
    const std::string& name = on.fonts.postScriptNames.front();
    for (auto _ : state) {
        const auto library = openLibrary(on.places, {}, [](const std::string&) {});
        if (library->findByPostScriptName(name).empty()) {
            state.SkipWithError("a name was not found");
        }
    }
}
BENCHMARK(openAndAsk)->Unit(benchmark::kMillisecond)->UseRealTime();

// One in five is not there; for that the family is asked, too.
void lookUpOneThousandNames(benchmark::State& state) {
    Stage& on = stage();
    const double before = privateMemory();
    Library library(on.places);
    for (auto _ : state) {
        const Reading reading = library.reading();
        std::size_t found = 0;
        for (std::size_t i = 0; i < asked; ++i) {
            const auto& names = on.fonts.postScriptNames;
            const std::string& name = names[i * 7919 % names.size()];
            if (i % 5 != 0) {
                found += library.findByPostScriptName(name).empty() ? 0 : 1;
            } else if (library.findByPostScriptName(name + "Absent").empty()) {
                found += library.findByFamily(faces::nameKey(name)).size();
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
