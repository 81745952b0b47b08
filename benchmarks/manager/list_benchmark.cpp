// SPDX-License-Identifier: MIT
// What the window's list does with a library of 100,000 files: reads it, and follows what is typed.
#include "benchmarks/manager/stage.h"
#include "manager/library/library.h"
#include "manager/view/facelisting.h"

#include <array>
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

using namespace manager;

namespace {

std::shared_ptr<const LibraryView> readView() {
    Library library(benchmarks::scannedStage().world.places());
    FaceTable table(library);
    FaceStates states(table, {});
    return std::make_shared<const LibraryView>(LibraryView{std::move(table), std::move(states)});
}

void readFaceList(benchmark::State& state) {
    static_cast<void>(benchmarks::scannedStage());
    for (auto _ : state) {
        benchmark::DoNotOptimize(readView());
    }
}
BENCHMARK(readFaceList)->Unit(benchmark::kMillisecond);

// What else a view has: the tags that filters offer, and copies.
void readTags(benchmark::State& state) {
    Library library(benchmarks::scannedStage().world.places());
    constexpr std::array kinds{SharedKind::Scripts, SharedKind::Languages, SharedKind::Features};
    for (auto _ : state) {
        for (const SharedKind kind : kinds) {
            benchmark::DoNotOptimize(library.tags(kind));
        }
    }
}
BENCHMARK(readTags)->Unit(benchmark::kMillisecond);

void readDuplicates(benchmark::State& state) {
    Library library(benchmarks::scannedStage().world.places());
    for (auto _ : state) {
        benchmark::DoNotOptimize(library.duplicates());
    }
}
BENCHMARK(readDuplicates)->Unit(benchmark::kMillisecond);

// Each letter of a name, as it is typed.
void typeIntoFaceList(benchmark::State& state) {
    const auto view = readView();
    const std::string text = benchmarks::spreadNames(3).back();
    const auto letters = static_cast<std::size_t>(state.range(0));
    FaceListing listing;
    for (auto _ : state) {
        state.PauseTiming();
        listing.show(view, {.text = text.substr(0, letters - 1)});
        state.ResumeTiming();
        listing.show(view, {.text = text.substr(0, letters)});
        benchmark::DoNotOptimize(listing.families().data());
    }
}
BENCHMARK(typeIntoFaceList)->DenseRange(1, 4)->Unit(benchmark::kMillisecond);

// A letter typed while a filter passes most of the faces.
void typeIntoFilteredFaceList(benchmark::State& state) {
    const auto view = readView();
    std::vector<FaceId> ids;
    for (const ListedFace& face : view->table.faces().subspan(1)) {
        ids.push_back(face.id);
    }
    const auto found = std::make_shared<const std::vector<FaceId>>(std::move(ids));
    const std::string letter = benchmarks::spreadNames(3).back().substr(0, 1);
    FaceListing listing;
    for (auto _ : state) {
        state.PauseTiming();
        listing.show(view, {.found = found});
        state.ResumeTiming();
        listing.show(view, {.text = letter, .found = found});
        benchmark::DoNotOptimize(listing.families().data());
    }
}
BENCHMARK(typeIntoFilteredFaceList)->Unit(benchmark::kMillisecond);

// Another filter, as the window's thread has it: what the index has found comes to the list.
void filterFaceList(benchmark::State& state) {
    const auto view = readView();
    std::vector<FaceId> ids;
    for (const ListedFace& face : view->table.faces()) {
        ids.push_back(face.id);
    }
    FaceListing listing;
    for (auto _ : state) {
        listing.show(view, {.found = std::make_shared<const std::vector<FaceId>>(ids)});
        benchmark::DoNotOptimize(listing.families().data());
    }
}
BENCHMARK(filterFaceList)->Unit(benchmark::kMillisecond);

void filterFaceListByState(benchmark::State& state) {
    const auto view = readView();
    FaceListing listing;
    for (auto _ : state) {
        listing.show(view, {.state = FaceState::Inactive});
        benchmark::DoNotOptimize(listing.families().data());
    }
}
BENCHMARK(filterFaceListByState)->Unit(benchmark::kMillisecond);

// What a filter of the index takes of the reader's thread.
void askIndex(benchmark::State& state) {
    FaceQuery query;
    if (state.range(0) == 0) {
        query.weight = Range{650, 750};
    } else {
        query.characters = charactersOf("A quick brown fox, 0123456789");
    }
    static_cast<void>(benchmarks::scannedStage());
    Library library(benchmarks::scannedStage().world.places());
    std::size_t found = 0;
    for (auto _ : state) {
        found = library.familyKeys(query).size();
    }
    state.counters["found"] = static_cast<double>(found);
}
BENCHMARK(askIndex)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

} // namespace
