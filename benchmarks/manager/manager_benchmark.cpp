// SPDX-License-Identifier: MIT
// A library of 100,000 faces: look-up of 1,000 names, a reply of 1,000 fonts; and the scan of the
// machine's own fonts, first and again.
#include "faces/namekey.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/exchange.h"
#include "manager/library/indexwriter.h"
#include "manager/library/update.h"
#include "tests/support/temporaryfolder.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <vector>

using namespace manager;

namespace {

constexpr int faceCount = 100'000;
constexpr int facesPerFamily = 4;
constexpr int folderCount = 500;
constexpr int asked = 1000;

struct TemporaryPlaces {
    TemporaryPlaces() { places.data = folder.path(); }
    testsupport::TemporaryFolder folder;
    Places places;
};

std::string postScriptName(int face) {
    return "Family" + std::to_string(face / facesPerFamily) + "-Style" +
           std::to_string(face % facesPerFamily);
}

// As a scan of 100,000 single fonts would write them.
void fill(Database& database) {
    Transaction transaction(database);
    IndexWriter writer(database);
    FoundFolder folder;
    std::int64_t directory = 0;
    for (int i = 0; i < faceCount; ++i) {
        const int family = i / facesPerFamily;
        if (i % (faceCount / folderCount) == 0) {
            folder.path = "/fonts/foundry" + std::to_string(i / (faceCount / folderCount));
            directory = writer.addDirectory(folder, false);
        }
        faces::Face face;
        face.technology = faces::Technology::OpenTypeTrueType;
        face.postScriptName = postScriptName(i);
        face.names = {{"Family " + std::to_string(family),
                       "Style " + std::to_string(i % facesPerFamily), "en",
                       faces::NameKind::Legacy}};
        face.fullNames = {face.names[0].family + " " + face.names[0].style};
        writer.write(folder, directory, {std::to_string(i) + ".otf", {1, 1, i}}, 0,
                     ReadFont{{false, {face}}, 0});
    }
    transaction.commit();
}

struct LargeLibrary {
    LargeLibrary() : library(temporary.places), activation(temporary.places) {
        fill(library.database());
    }
    TemporaryPlaces temporary;
    Library library;
    Activation activation;
};

LargeLibrary& largeLibrary() {
    static LargeLibrary library;
    return library;
}

int spread(int i) {
    return static_cast<int>(std::int64_t{i} * 7919 % faceCount);
}

void lookUpByPostScriptName(benchmark::State& state) {
    Library& library = largeLibrary().library;
    for (auto _ : state) {
        std::size_t found = 0;
        for (int i = 0; i < asked; ++i) {
            found += library.findByPostScriptName(postScriptName(spread(i))).size();
        }
        if (found != asked) {
            state.SkipWithError("not all names were found");
        }
    }
    state.SetItemsProcessed(state.iterations() * asked);
}
BENCHMARK(lookUpByPostScriptName)->Unit(benchmark::kMillisecond);

void lookUpByFamily(benchmark::State& state) {
    Library& library = largeLibrary().library;
    for (auto _ : state) {
        for (int i = 0; i < asked; ++i) {
            const int family = spread(i) / facesPerFamily;
            if (library.findByFamily("family" + std::to_string(family)).empty()) {
                state.SkipWithError("not all families were found");
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * asked);
}
BENCHMARK(lookUpByFamily)->Unit(benchmark::kMillisecond);

std::string command(const char* word) {
    std::string text = std::string("<cmd>") + word + "</cmd>\n";
    for (int i = 0; i < asked; ++i) {
        text += "<font>\n<syncID>" + std::to_string(i) + "</syncID>\n<psName>" +
                postScriptName(spread(i)) + "</psName>\n</font>\n";
    }
    return text + "</cmd>\n";
}

void parseOneThousandFonts(benchmark::State& state) {
    const std::string text = command("fontRequest");
    for (auto _ : state) {
        benchmark::DoNotOptimize(parseCommand(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(parseOneThousandFonts)->Unit(benchmark::kMicrosecond);

// Parsing, look-up and the reply, without activation: the files of this library do not exist.
void answerOneThousandFonts(benchmark::State& state) {
    LargeLibrary& large = largeLibrary();
    const std::string text = command("showRequest");
    std::size_t size = 0;
    for (auto _ : state) {
        const Answer answer = answerCommand(large.library, large.activation, text);
        size = answer.reply.size();
        if (answer.fonts != asked || !answer.problems.empty()) {
            state.SkipWithError("not all fonts were answered");
        }
    }
    state.counters["replyBytes"] = static_cast<double>(size);
}
BENCHMARK(answerOneThousandFonts)->Unit(benchmark::kMillisecond);

void scanTheMachinesFonts(benchmark::State& state) {
    const std::vector<std::string> folders = {"/usr/share/fonts"};
    std::size_t files = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const TemporaryPlaces temporary;
        Library library(temporary.places);
        state.ResumeTiming();
        files += updateLibrary(library, folders, FontReaderLimits{}).read;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(files));
}
BENCHMARK(scanTheMachinesFonts)->Unit(benchmark::kMillisecond)->UseRealTime();

void scanTheMachinesFontsAgain(benchmark::State& state) {
    const std::vector<std::string> folders = {"/usr/share/fonts"};
    const TemporaryPlaces temporary;
    Library library(temporary.places);
    updateLibrary(library, folders, FontReaderLimits{});
    std::size_t files = 0;
    for (auto _ : state) {
        files += updateLibrary(library, folders, FontReaderLimits{}).unchanged;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(files));
}
BENCHMARK(scanTheMachinesFontsAgain)->Unit(benchmark::kMillisecond)->UseRealTime();

void openAndCheckTheIndex(benchmark::State& state) {
    LargeLibrary& large = largeLibrary();
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            openLibrary(large.temporary.places, {}, [](const std::string&) {}));
    }
}
BENCHMARK(openAndCheckTheIndex)->Unit(benchmark::kMillisecond);

double processorSeconds() {
    double seconds = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage used{};
        getrusage(who, &used);
        for (const timeval& part : {used.ru_utime, used.ru_stime}) {
            seconds += static_cast<double>(part.tv_sec) + static_cast<double>(part.tv_usec) / 1e6;
        }
    }
    return seconds;
}

// Containers of one font each, and a desktop that shows nothing else.
struct ManyContainers {
    explicit ManyContainers(std::int64_t count) {
        const char* font = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";
        const std::string folder = temporary.places.data + "/library";
        std::filesystem::create_directories(folder);
        for (int i = 1; i <= count; ++i) {
            const std::string path = folder + "/" + std::to_string(i) + ".ttf";
            std::filesystem::copy_file(font, path);
            ids.push_back(static_cast<ContainerId>(i));
            containers.push_back({ids.back(), "Container", {{path, stampOf(path)}}});
        }
        const std::string configuration = temporary.places.data + "/fonts.conf";
        writeFile(configuration, "<?xml version=\"1.0\"?><fontconfig><dir>" +
                                     temporary.places.data + "/fonts</dir><cachedir>" +
                                     temporary.places.data + "/cache</cachedir></fontconfig>");
        setenv("FONTCONFIG_FILE", configuration.c_str(), 1);
    }
    ManyContainers(const ManyContainers&) = delete;
    ManyContainers& operator=(const ManyContainers&) = delete;
    ~ManyContainers() { unsetenv("FONTCONFIG_FILE"); }

    TemporaryPlaces temporary;
    std::vector<ContainerFonts> containers;
    std::vector<ContainerId> ids;
};

// From nothing to visible. "cpuMs" is all processor time a container, that of the processes that
// read the fonts included.
void activateContainers(benchmark::State& state) {
    const ManyContainers many(state.range(0));
    const auto& containers = many.containers;
    Activation activation(many.temporary.places);
    double processor = 0;
    for (auto _ : state) {
        processor -= processorSeconds();
        const auto outcomes = activation.activate(containers);
        processor += processorSeconds();
        for (const ActivationOutcome& outcome : outcomes) {
            if (!outcome.success) {
                state.SkipWithError(outcome.problems.front().c_str());
            }
        }
        state.PauseTiming();
        benchmark::DoNotOptimize(activation.deactivate(many.ids));
        state.ResumeTiming();
    }
    state.counters["cpuMs"] = processor * 1e3 / static_cast<double>(state.iterations()) /
                              static_cast<double>(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(activateContainers)
    ->Arg(1)
    ->Arg(8)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Those whose reason has ended go, while so many others stay. "deletionMs" is the processor time of
// what is left for when nobody waits.
void withdrawContainers(benchmark::State& state) {
    ManyContainers many(state.range(0) + state.range(1));
    Reason over = Reason::forTime(std::chrono::hours(0));
    --over.time;
    const auto due = std::span(many.containers).first(static_cast<std::size_t>(state.range(0)));
    const auto staying = std::span(many.containers).subspan(due.size());
    for (ContainerFonts& container : due) {
        container.reasons = {over};
    }
    Activation activation(many.temporary.places);
    benchmark::DoNotOptimize(activation.activate(staying));
    benchmark::DoNotOptimize(activation.withdrawDue());
    double processor = 0;
    double deletion = 0;
    for (auto _ : state) {
        state.PauseTiming();
        benchmark::DoNotOptimize(activation.activate(due));
        activation.lookAgain(std::vector(many.ids.begin(), many.ids.begin() + state.range(0)));
        state.ResumeTiming();
        processor -= processorSeconds();
        if (activation.withdrawDue().size() != due.size()) {
            state.SkipWithError("not all were withdrawn");
        }
        benchmark::DoNotOptimize(activation.endingReasons());
        processor += processorSeconds();
        state.PauseTiming();
        deletion -= processorSeconds();
        activation.sweep(due.size());
        deletion += processorSeconds();
        state.ResumeTiming();
    }
    const double count =
        static_cast<double>(state.iterations()) * static_cast<double>(state.range(0));
    state.counters["cpuMs"] = processor * 1e3 / count;
    state.counters["deletionMs"] = deletion * 1e3 / count;
}
BENCHMARK(withdrawContainers)
    ->Args({1, 0})
    ->Args({1, 10000})
    ->Args({1000, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

BENCHMARK_MAIN();
