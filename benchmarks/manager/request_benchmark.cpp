// SPDX-License-Identifier: MIT
// One command for 1,000 fonts of the library of 100,000, one in five of them absent: reading the
// command, looking up, and the reply. The fonts held are all over the library, few in the same
// container; nothing has to be activated.
#include "benchmarks/manager/stage.h"
#include "manager/exchange/exchange.h"

#include <benchmark/benchmark.h>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace manager;

namespace {

constexpr std::size_t asked = 1000;

enum class Absent {
    WithTheirFamilies,
    StylesOfFamiliesThere, // nearly all of which then have to be looked at
};

bool isAbsent(std::size_t position) {
    return position % 5 == 0;
}

std::string command(const std::string& word, Absent kind) {
    std::string text = "<cmd>" + word + "</cmd>\n<targetApp>ART5</targetApp>\n";
    std::size_t position = 0;
    for (const std::string& name : benchmarks::spreadNames(asked)) {
        std::string family = name.substr(0, name.rfind('-'));
        std::string style = name.substr(name.rfind('-') + 1);
        if (isAbsent(position) && kind == Absent::WithTheirFamilies) {
            family = "Nowhere" + family;
        } else if (isAbsent(position)) {
            style = "UltraExpanded";
        }
        text += "<font>\n<syncID>" + std::to_string(position++) + "</syncID>\n<psName>" + family;
        text += "-" + style + "</psName>\n<familyName>" + family + "</familyName>\n<styleName>";
        text += style + "</styleName>\n</font>\n";
    }
    return text + "</cmd>\n";
}

std::size_t countOf(std::string_view part, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string_view::npos; ++at) {
        ++count;
    }
    return count;
}

void answer(benchmark::State& state, Library& library, const Activation& activation,
            const std::string& text, std::size_t active) {
    Answer answer;
    StandIns standIns; // as a server keeps it
    for (auto _ : state) {
        ActivationRun run;
        answer = answerCommand(library, activation, standIns, text, std::nullopt, run);
        if (!run.takeWanted().empty()) {
            state.SkipWithError("something was to be activated");
        }
    }
    if (answer.fonts != asked || !answer.problems.empty() ||
        countOf("<count>0</count>", answer.reply) != asked / 5 ||
        countOf("<isActive>1</isActive>", answer.reply) != active) {
        state.SkipWithError("not all fonts were answered as they are");
    }
    state.counters["replyKB"] = static_cast<double>(answer.reply.size()) / 1e3;
}

void answerWithNothingActive(benchmark::State& state) {
    const Places places = benchmarks::scannedStage().world.places();
    Library library(places);
    const Activation activation(places);
    answer(state, library, activation, command("showRequest", Absent(state.range(0))), 0);
}
BENCHMARK(answerWithNothingActive)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// What a request for all fonts leaves, until the end of the program.
Activation& activated(Library& library) {
    static const std::unique_ptr<Activation> activation = [&library] {
        auto made = std::make_unique<Activation>(benchmarks::scannedStage().world.places());
        std::set<ContainerId> ids;
        std::vector<ContainerFonts> containers;
        for (const std::string& name : benchmarks::spreadNames(asked)) {
            for (const FaceMatch& face : library.findByPostScriptName(name)) {
                if (ids.insert(face.container).second) {
                    containers.push_back({face.container, library.container(face.container)->name,
                                          library.files(face.container)});
                }
            }
        }
        made->refreshDesktop();
        static_cast<void>(made->activate(containers));
        return made;
    }();
    return *activation;
}

void answerWithAllActive(benchmark::State& state) {
    Library library(benchmarks::scannedStage().world.places());
    const Activation& activation = activated(library);
    answer(state, library, activation, command("fontRequest", Absent(state.range(0))),
           asked / 5 * 4);
}
BENCHMARK(answerWithAllActive)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace
