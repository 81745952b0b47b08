// SPDX-License-Identifier: MIT
// The program in processes of its own, on a bus and in a data folder of its own, with a library of
// 100,000 font files whose index is there: from the start of the server to its first answer, each
// command of the command line, what a server takes of memory, and how soon new processes see what
// was activated. "cpuMs" is what the process took of the processors.
#include "benchmarks/manager/stage.h"
#include "manager/activation/activation.h"
#include "platform/appleevents.h"
#include "tests/support/fontmaker.h"
#include "tests/support/privatebus/privatebus.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <utility>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration)

using namespace manager;

namespace {

using Clock = std::chrono::steady_clock;

/// What runs until it ends, or is ended with its owner.
class Process {
public:
    Process(const std::vector<std::string>& words, const std::string& output) {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
            posix_spawn_file_actions_addopen(&actions, descriptor, output.c_str(),
                                             O_WRONLY | O_CREAT | O_TRUNC, 0644);
        }
        if (posix_spawnp(&id_, arguments.front(), &actions, nullptr, arguments.data(), environ) !=
            0) {
            id_ = -1;
        }
        posix_spawn_file_actions_destroy(&actions);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        if (id_ > 0) {
            kill(id_, SIGTERM);
            wait();
        }
    }

    [[nodiscard]] pid_t id() const { return id_; }
    /// Its status; -1: it was not started or did not get to its end.
    int wait() {
        int status = 0;
        rusage used{};
        if (id_ <= 0 || wait4(std::exchange(id_, -1), &status, 0, &used) <= 0) {
            return -1;
        }
        for (const timeval& part : {used.ru_utime, used.ru_stime}) {
            processorMs_ +=
                static_cast<double>(part.tv_sec) * 1e3 + static_cast<double>(part.tv_usec) / 1e3;
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// Once it has ended.
    [[nodiscard]] double processorMs() const { return processorMs_; }

private:
    pid_t id_ = -1;
    double processorMs_ = 0;
};

/// The time that all threads of a process have had so far.
double processorMsOf(pid_t process) {
    double nanoseconds = 0;
    std::error_code code;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", code)) {
        double own = 0;
        std::ifstream(task.path() / "schedstat") >> own;
        nanoseconds += own;
    }
    return nanoseconds / 1e6;
}

/// In megabytes, a line of a file of the process in /proc.
double megabytes(pid_t process, const char* file, const std::string& name) {
    std::ifstream lines("/proc/" + std::to_string(process) + "/" + file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ":")) {
            return std::stod(line.substr(name.size() + 1)) * 1024 / 1e6;
        }
    }
    return 0;
}

std::string requestFor(const std::vector<std::string>& names) {
    std::string text = "<cmd>fontRequest</cmd>\n<protocolVersion>1.00</protocolVersion>\n";
    for (const std::string& name : names) {
        text += "<font>\n<syncID>1</syncID>\n<psName>" + name + "</psName>\n</font>\n";
    }
    return text + "</cmd>\n";
}

/// The server's reply; empty: there is no server yet.
std::string ask(const std::string& command) {
    AEDesc target;
    AppleEvent request;
    AppleEvent response;
    AECreateDesc(typeApplSignature, "QGLY", 4, &target);
    AECreateAppleEvent(FourCharCode("QGLY"), typeWildCard, &target, kAutoGenerateReturnID,
                       kAnyTransactionID, &request);
    AEPutParamPtr(&request, keyDirectObject, typeChar, command.data(),
                  static_cast<Size>(command.size()));
    const OSStatus status = AESend(&request, &response, kAEWaitReply, kAENormalPriority,
                                   kAEDefaultTimeout, nullptr, nullptr);
    std::string answer;
    if (status == noErr) {
        Size size = 0;
        AEGetParamPtr(&response, keyDirectObject, typeChar, nullptr, nullptr, 0, &size);
        answer.resize(static_cast<std::size_t>(size));
        AEGetParamPtr(&response, keyDirectObject, typeChar, nullptr, answer.data(), size, nullptr);
        AEDisposeDesc(&response);
    }
    AEDisposeDesc(&request);
    AEDisposeDesc(&target);
    return answer;
}

std::string askUntilAnswered(const std::string& command) {
    for (;;) {
        if (std::string reply = ask(command); !reply.empty()) {
            return reply;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

/// The stage, with an index and a bus.
benchmarks::Stage& stageWithBus() {
    benchmarks::Stage& stage = benchmarks::scannedStage(); // forks, so before the bus
    static const testsupport::PrivateBus bus;
    return stage;
}

std::vector<std::string> program(std::vector<std::string> words) {
    words.insert(words.begin(), GLYPHORA_PROGRAM);
    return words;
}

// Whoever asks tries five times a millisecond.
void startToAnswering(benchmark::State& state) {
    const auto& stage = stageWithBus();
    const std::string command = requestFor({"Nowhere-Regular"});
    double processor = 0;
    for (auto _ : state) {
        const auto start = Clock::now();
        const Process server(program({"serve"}), stage.world.root() + "/log");
        const std::string reply = askUntilAnswered(command);
        state.SetIterationTime(benchmarks::secondsSince(start));
        processor += processorMsOf(server.id());
        if (reply.find("<count>0</count>") == std::string::npos) {
            state.SkipWithError("the answer is not one");
        }
    }
    state.counters["cpuMs"] = benchmark::Counter(processor, benchmark::Counter::kAvgIterations);
}
BENCHMARK(startToAnswering)->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond);

double runTimed(benchmark::State& state, const std::vector<std::string>& words) {
    const auto start = Clock::now();
    Process process(program(words), stageWithBus().world.root() + "/log");
    const int status = process.wait();
    state.SetIterationTime(benchmarks::secondsSince(start));
    if (status != 0) {
        state.SkipWithError("the command failed");
    }
    return process.processorMs();
}

void command(benchmark::State& state, const std::vector<std::string>& words) {
    stageWithBus();
    double processor = 0;
    for (auto _ : state) {
        processor += runTimed(state, words);
    }
    state.counters["cpuMs"] = benchmark::Counter(processor, benchmark::Counter::kAvgIterations);
}

void activateAndDeactivate(benchmark::State& state, const std::string& timed) {
    stageWithBus();
    const std::string name = benchmarks::spreadNames(1).front();
    double processor = 0;
    for (auto _ : state) {
        for (const std::string word : {"activate", "deactivate"}) {
            if (word == timed) {
                processor += runTimed(state, {word, name});
            } else {
                Process(program({word, name}), "/dev/null").wait();
            }
        }
    }
    state.counters["cpuMs"] = benchmark::Counter(processor, benchmark::Counter::kAvgIterations);
}

void registerCommands() {
    const auto add = [](const std::string& name, const std::vector<std::string>& words) {
        benchmark::RegisterBenchmark(("command/" + name).c_str(), command, words)
            ->Iterations(10)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    };
    add("--version", {"--version"});
    add("status", {"status"});
    add("history", {"history"});
    add("info", {"info", "1"});
    add("search word", {"search", "Sans"});
    add("search rare word", {"search", "9999"});
    add("search two words", {"search", "bold sans"});
    add("search numbers", {"search", "--weight", "700", "--slant", "upright"});
    add("search script", {"search", "--script", "Latn"});
    add("tag add", {"tag", "add", "some", "1", "2", "3"});
    add("tag list", {"tag", "list"});
    add("tag list some", {"tag", "list", "some"});
    add("list", {"list"});
    add("list --problems", {"list", "--problems"});
    add("list --containers", {"list", "--containers"});
    add("duplicates", {"duplicates"});
    for (const std::string word : {"activate", "deactivate"}) {
        benchmark::RegisterBenchmark(("command/" + word).c_str(), activateAndDeactivate, word)
            ->Iterations(10)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

// From the reply that tells of the activation to the end of a new program that finds the face.
void newProcessSeesFace(benchmark::State& state) {
    const auto& stage = stageWithBus();
    const Process server(program({"serve"}), stage.world.root() + "/log");
    const std::vector<std::string> names = benchmarks::spreadNames(2000);
    std::size_t next = 1001; // behind those that others activate
    for (auto _ : state) {
        const std::string& name = names.at(next++);
        const std::string reply = askUntilAnswered(requestFor({name}));
        const auto start = Clock::now();
        const std::string log = stage.world.root() + "/match";
        Process match({"fc-match", "-f", "%{postscriptname}", ":postscriptname=" + name}, log);
        match.wait();
        state.SetIterationTime(benchmarks::secondsSince(start));
        if (reply.find("<activationSuccessfull>1<") == std::string::npos ||
            testsupport::contentOf(log) != name) {
            state.SkipWithError((name + ": was not seen").c_str());
        }
    }
}
BENCHMARK(newProcessSeesFace)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);

// A library of as many families of one font each, all of them active.
void serveWithManyActive(benchmark::State& state) {
    stageWithBus();
    const benchmarks::World world;
    std::vector<std::string> names;
    for (int i = 0; i < state.range(0); ++i) {
        testsupport::FontRecipe recipe;
        recipe.family = "Single " + std::to_string(i);
        recipe.postScriptName = "Single" + std::to_string(i);
        names.push_back(recipe.postScriptName);
        std::ofstream(world.library() + "/" + names.back() + ".ttf", std::ios::binary)
            << testsupport::makeFont(recipe);
    }
    world.scan();
    {
        Library library(world.places());
        std::vector<ContainerFonts> containers;
        for (const Container& container : library.containers()) {
            containers.push_back({container.id, container.name, library.files(container.id)});
        }
        Activation activation(world.places());
        activation.refreshDesktop();
        static_cast<void>(activation.activate(containers));
    }
    names.resize(std::min<std::size_t>(names.size(), 1000));
    const std::string command = requestFor(names);
    for (auto _ : state) {
        const Process server(program({"serve"}), world.root() + "/log");
        for (int i = 0; i < 10; ++i) {
            const std::string reply = askUntilAnswered(command);
            if (reply.find("<isActive>0<") != std::string::npos) {
                state.SkipWithError("not all is active");
            }
        }
        state.counters["residentMB"] = megabytes(server.id(), "status", "VmRSS");
        state.counters["privateMB"] = megabytes(server.id(), "smaps_rollup", "Private_Dirty");
    }
}
BENCHMARK(serveWithManyActive)->Arg(10'000)->Iterations(1)->Unit(benchmark::kMillisecond);

const bool registered = (registerCommands(), true);

} // namespace
