// SPDX-License-Identifier: MIT
// Speed of the desktop's services over a private bus: exchanges between two processes by size, the
// search for a process, postings, checks, and the semaphore.
#include "platform/appleevents.h"
#include "platform/application.h"
#include "platform/multiprocessing.h"
#include "platform/notify.h"
#include "platform/processes.h"
#include "tests/support/privatebus/privatebus.h"

#include <benchmark/benchmark.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <string_view>
#include <thread>

namespace {

/// Ends the program unless a preparation succeeded: what was measured then would mean nothing.
void need(bool succeeded) {
    if (!succeeded) {
        std::fputs("a benchmark could not be prepared\n", stderr);
        std::abort();
    }
}

constexpr const char* serveOption = "--serve";
constexpr const char* postedName = "org.glyphora.benchmark.Changed";

OSErr echo(const AppleEvent* event, AppleEvent* reply, void* refCon) {
    auto& buffer = *static_cast<std::string*>(refCon);
    Size size = 0;
    AEGetParamPtr(event, keyDirectObject, typeChar, nullptr, nullptr, 0, &size);
    buffer.resize(static_cast<std::size_t>(size));
    AEGetParamPtr(event, keyDirectObject, typeChar, nullptr, buffer.data(), size, nullptr);
    return AEPutParamPtr(reply, keyDirectObject, typeChar, buffer.data(), size);
}

/// The second process.
int serve() {
    std::string buffer;
    const AEEventHandlerUPP handler = NewAEEventHandlerUPP(echo);
    AEInstallEventHandler(typeWildCard, typeWildCard, handler, &buffer, false);
    DisposeAEEventHandlerUPP(handler);
    if (PLRegisterApplication(FourCharCode("ECHO"), kPLOneInstance, nullptr) != noErr) {
        return 1;
    }
    while (PLWaitForEvents(-1) >= 0) {
    }
    return 0;
}

ProcessSerialNumber findEcho() {
    ProcessSerialNumber psn;
    while (GetNextProcess(&psn) == noErr && psn.highLongOfPSN != FourCharCode("ECHO")) {
    }
    return psn;
}

class Server {
public:
    Server() : process_(fork()) {
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            execl("/proc/self/exe", "platform_benchmark", serveOption, static_cast<char*>(nullptr));
            _exit(1);
        }
        while (findEcho().lowLongOfPSN == kNoProcess) {
            std::this_thread::yield();
        }
    }
    ~Server() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

private:
    pid_t process_;
};

struct Setting {
    testsupport::PrivateBus bus;
    Server server;
};

void exchangeOfBytes(benchmark::State& state) {
    const std::string text(static_cast<std::size_t>(state.range(0)), 'x');
    std::string answer(text.size(), '\0');
    AEAddressDesc address;
    AECreateDesc(typeApplSignature, "ECHO", 4, &address);
    for ([[maybe_unused]] auto _ : state) {
        AppleEvent event;
        AppleEvent reply;
        AECreateAppleEvent(FourCharCode("ECHO"), FourCharCode("****"), &address,
                           kAutoGenerateReturnID, kAnyTransactionID, &event);
        AEPutParamPtr(&event, keyDirectObject, typeChar, text.data(),
                      static_cast<Size>(text.size()));
        const OSStatus status = AESend(&event, &reply, kAEWaitReply, kAENormalPriority,
                                       kAEDefaultTimeout, nullptr, nullptr);
        AEGetParamPtr(&reply, typeWildCard, typeChar, nullptr, answer.data(),
                      static_cast<Size>(answer.size()), nullptr);
        AEDisposeDesc(&reply);
        AEDisposeDesc(&event);
        if (status != noErr) {
            state.SkipWithError("the exchange failed");
            break;
        }
    }
    AEDisposeDesc(&address);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0) * 2);
}
BENCHMARK(exchangeOfBytes)
    ->Arg(100)
    ->Arg(10'000)
    ->Arg(1'000'000)
    ->Arg(32'000'000)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

void sendToNobody(benchmark::State& state) {
    AEAddressDesc address;
    AppleEvent event;
    AECreateDesc(typeApplSignature, "NONE", 4, &address);
    AECreateAppleEvent(FourCharCode("ECHO"), FourCharCode("****"), &address, kAutoGenerateReturnID,
                       kAnyTransactionID, &event);
    AppleEvent reply;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(
            AESend(&event, &reply, kAEWaitReply, kAENormalPriority, 60, nullptr, nullptr));
    }
    AEDisposeDesc(&event);
    AEDisposeDesc(&address);
}
BENCHMARK(sendToNobody)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// One turn of the loop that waits for a launched process: with a match, and without.
void findProcess(benchmark::State& state) {
    const OSType wanted = state.range(0) != 0 ? FourCharCode("ECHO") : FourCharCode("NONE");
    for ([[maybe_unused]] auto _ : state) {
        ProcessSerialNumber psn;
        ProcessInfoRec info;
        while (GetNextProcess(&psn) == noErr && GetProcessInformation(&psn, &info) == noErr &&
               info.processSignature != wanted) {
        }
        benchmark::DoNotOptimize(info);
    }
}
BENCHMARK(findProcess)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond)->UseRealTime();

void postNotification(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        notify_post(postedName);
    }
}
BENCHMARK(postNotification)->Unit(benchmark::kMicrosecond)->UseRealTime();

void postAndCheck(benchmark::State& state) {
    int token = 0;
    need(notify_register_check(postedName, &token) == NOTIFY_STATUS_OK);
    for ([[maybe_unused]] auto _ : state) {
        notify_post(postedName);
        int check = 0;
        while (check == 0) {
            notify_check(token, &check);
        }
    }
    notify_cancel(token);
}
BENCHMARK(postAndCheck)->Unit(benchmark::kMicrosecond)->UseRealTime();

void checkWithoutNews(benchmark::State& state) {
    int token = 0;
    need(notify_register_check(postedName, &token) == NOTIFY_STATUS_OK);
    int check = 0;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(notify_check(token, &check));
    }
    notify_cancel(token);
}
BENCHMARK(checkWithoutNews);

void dispatchWithoutEvents(benchmark::State& state) {
    need(PLRegisterApplication(FourCharCode("BENC"), kPLManyInstances, nullptr) == noErr);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(PLDispatchPendingEvents());
    }
    PLUnregisterApplication();
}
BENCHMARK(dispatchWithoutEvents);

void signalAndTake(benchmark::State& state) {
    MPSemaphoreID semaphore = nullptr;
    need(MPCreateSemaphore(32767, 0, &semaphore) == noErr);
    for ([[maybe_unused]] auto _ : state) {
        MPSignalSemaphore(semaphore);
        benchmark::DoNotOptimize(MPWaitOnSemaphore(semaphore, kDurationImmediate));
    }
    MPDeleteSemaphore(semaphore);
}
BENCHMARK(signalAndTake);

void tryEmptySemaphore(benchmark::State& state) {
    MPSemaphoreID semaphore = nullptr;
    need(MPCreateSemaphore(32767, 0, &semaphore) == noErr);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(MPWaitOnSemaphore(semaphore, kDurationImmediate));
    }
    MPDeleteSemaphore(semaphore);
}
BENCHMARK(tryEmptySemaphore);

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string_view(argv[1]) == serveOption) {
        return serve();
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    const Setting setting;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
