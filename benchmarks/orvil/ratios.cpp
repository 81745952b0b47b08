// SPDX-License-Identifier: MIT
// Runs the benchmarks in turns and prints, after them, how each stands to its peer. The shortest of
// the repetitions counts: what the machine does besides only ever adds.
#include "ratios.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace ratios {

namespace {

struct Expectation {
    std::string ours;
    std::string peer;
    double factor;
    double slack;
};

std::vector<Expectation>& expectations() {
    static std::vector<Expectation> list;
    return list;
}

class Reporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                const double time = run.GetAdjustedCPUTime() * 1e9 /
                                    benchmark::GetTimeUnitMultiplier(run.time_unit);
                const auto known = times_.emplace(run.run_name.function_name, time).first;
                known->second = std::min(known->second, time);
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void printRatios() const {
        std::printf("\n%-40s %-30s %12s %12s %8s %8s\n", "ours", "peer", "ns", "peer ns", "times",
                    "at most");
        for (const Expectation& expected : expectations()) {
            const auto ours = times_.find(expected.ours);
            const auto peer = times_.find(expected.peer);
            if (ours == times_.end() || peer == times_.end()) {
                continue;
            }
            const double limit = peer->second * expected.factor + expected.slack;
            std::printf("%-40s %-30s %12.1f %12.1f %8.3f %8.3f%s\n", expected.ours.c_str(),
                        expected.peer.c_str(), ours->second, peer->second,
                        ours->second / peer->second, limit / peer->second,
                        ours->second <= limit ? "" : "  MISSED");
        }
    }

private:
    std::map<std::string, double> times_;
};

} // namespace

bool atMost(const std::string& ours, const std::string& peer, double factor, double slack) {
    expectations().push_back({ours, peer, factor, slack});
    return true;
}

} // namespace ratios

int main(int argc, char** argv) {
    std::vector<std::string> texts{argv[0], "--benchmark_repetitions=7",
                                   "--benchmark_enable_random_interleaving=true",
                                   "--benchmark_min_time=0.05"};
    texts.insert(texts.end(), argv + 1, argv + argc);
    std::vector<char*> arguments;
    arguments.reserve(texts.size());
    for (std::string& text : texts) {
        arguments.push_back(text.data());
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 1;
    }
    ratios::Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    return 0;
}
