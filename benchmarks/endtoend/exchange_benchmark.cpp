// SPDX-License-Identifier: MIT
// One font request for 1,000 fonts, and the steps that it is made of: writing the command, the bus,
// folding, parsing, and matching the reply with the records. The peer is a process of its own that
// answers with a text made in advance, so that its work does not count.
#include "GLYEvent.h"
#include "GLYNotifyHandler.h"
#include "misc/xml/ixmlparser.h"
#include "platform/appleevents.h"
#include "platform/application.h"
#include "replytext.h"
#include "tests/support/privatebus/privatebus.h"

#include <benchmark/benchmark.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {

constexpr int fontCount = 1000;
constexpr OSType signature = FourCharCode("QGLY");

std::string nameOf(int font) {
    return "Benchmark" + std::to_string(font);
}

std::string makeReply() {
    std::string reply = "<cmd>fontRequest</cmd>\n<protocolVersion>2.0</protocolVersion>\n"
                        "<showWindow>0</showWindow>\n";
    for (int i = 0; i < fontCount; ++i) {
        const std::string name = nameOf(i);
        const std::string id = std::to_string(i + 1);
        reply += "<font>\n<syncID>" + name + "-Regular</syncID>\n<type>OT_TT</type>\n<psName>" +
                 name + "</psName>\n<styleName>Regular</styleName>\n<familyName>Benchmark & Sons " +
                 id + "</familyName>\n<count>1</count>\n<isActive>1</isActive>\n" +
                 "<typeMatchingCount>1</typeMatchingCount>\n" +
                 "<isTypeMatchingActive>1</isTypeMatchingActive>\n<typeMatchingContainerID>" + id +
                 "</typeMatchingContainerID>\n<containerID>" + id + "</containerID>\n" +
                 "<fontInfo><name>" + id + "</name><value>Benchmark & Sons, 4 styles, /fonts/" +
                 name + "</value></fontInfo>\n</font>\n";
    }
    return reply + "</cmd>\n";
}

const std::string& reply() {
    static const std::string text = makeReply();
    return text;
}

/// The process on the other side.
int servePeer() {
    if (PLRegisterApplication(signature, kPLOneInstance, "benchmark") != noErr) {
        return 1;
    }
    AEInstallEventHandler(signature, typeWildCard,
                          NewAEEventHandlerUPP([](const AppleEvent*, AppleEvent* answer, void*) {
                              return AEPutParamPtr(answer, keyDirectObject, typeChar,
                                                   reply().data(),
                                                   static_cast<Size>(reply().size()));
                          }),
                          nullptr, false);
    while (PLWaitForEvents(-1) >= 0) {
    }
    return 0;
}

GLY::GLYFontRequestEvent makeEvent() {
    GLY::GLYFontRequestEvent event;
    for (int i = 0; i < fontCount; ++i) {
        Orvil::SmartPointer<GLY::GLYFontInfo> info(new GLY::GLYFontInfo);
        info->font.psName = nameOf(i);
        info->font.syncID = nameOf(i) + "-Regular";
        info->font.familyName = "Benchmark & Sons " + std::to_string(i + 1);
        info->font.styleName = "Regular";
        event.fonts.push_back(info);
    }
    return event;
}

std::string foldedReply() {
    std::string text = reply();
    GLY::foldReply(text);
    return GLY::escapeAmpersands(std::move(text));
}

void Build(benchmark::State& state) {
    GLY::GLYFontRequestEvent event = makeEvent();
    for (auto _ : state) {
        event.build();
        benchmark::DoNotOptimize(event.command.data());
    }
}
BENCHMARK(Build)->Unit(benchmark::kMicrosecond);

void Bus(benchmark::State& state) {
    GLY::GLYFontRequestEvent event = makeEvent();
    event.build();
    std::string answer;
    for (auto _ : state) {
        AEDesc target;
        AppleEvent request;
        AppleEvent response;
        AECreateDesc(typeApplSignature, "QGLY", 4, &target);
        AECreateAppleEvent(signature, typeWildCard, &target, kAutoGenerateReturnID,
                           kAnyTransactionID, &request);
        AEPutParamPtr(&request, keyDirectObject, typeChar, event.command.data(),
                      static_cast<Size>(event.command.size()));
        AESend(&request, &response, kAEWaitReply, kAENormalPriority, kAEDefaultTimeout, nullptr,
               nullptr);
        Size size = 0;
        AEGetParamPtr(&response, typeWildCard, typeChar, nullptr, nullptr, 0, &size);
        answer.resize(static_cast<std::size_t>(size));
        AEGetParamPtr(&response, typeWildCard, typeChar, nullptr, answer.data(), size, nullptr);
        AEDisposeDesc(&response);
        AEDisposeDesc(&request);
        AEDisposeDesc(&target);
    }
    if (answer != reply()) {
        state.SkipWithError("the peer's answer did not arrive");
    }
}
BENCHMARK(Bus)->Unit(benchmark::kMicrosecond)->UseRealTime();

void Fold(benchmark::State& state) {
    for (auto _ : state) {
        const std::string text = foldedReply();
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(Fold)->Unit(benchmark::kMicrosecond);

void Parse(benchmark::State& state) {
    const std::string text = foldedReply();
    for (auto _ : state) {
        const Orvil::XmlDocumentHolder document("LibXmlParser");
        document->parseString(text);
        benchmark::DoNotOptimize(document->getRootNode());
    }
}
BENCHMARK(Parse)->Unit(benchmark::kMicrosecond);

/// Parsing, reading the fonts and matching them; less Parse, the last two.
void ParseAndMatch(benchmark::State& state) {
    GLY::GLYFontRequestEvent event = makeEvent();
    event.result = foldedReply();
    for (auto _ : state) {
        benchmark::DoNotOptimize(event.parseResult());
    }
    if (event.fonts.back()->installed != 1) {
        state.SkipWithError("the reply did not reach the records");
    }
}
BENCHMARK(ParseAndMatch)->Unit(benchmark::kMicrosecond);

void WholeExchange(benchmark::State& state) {
    GLY::GLYFontRequestEvent event = makeEvent();
    for (auto _ : state) {
        event.build();
        event.send();
    }
    if (event.succeeded == 0) {
        state.SkipWithError("the exchange failed");
    }
}
BENCHMARK(WholeExchange)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// Waits until the peer can be found on the bus.
bool awaitPeer() {
    AEDesc target;
    AECreateDesc(typeApplSignature, "QGLY", 4, &target);
    OSStatus status = procNotFound;
    for (int attempt = 0; attempt < 10'000 && status == procNotFound; ++attempt) {
        AppleEvent request;
        AppleEvent response;
        AECreateAppleEvent(signature, typeWildCard, &target, kAutoGenerateReturnID,
                           kAnyTransactionID, &request);
        status = AESend(&request, &response, kAEWaitReply, kAENormalPriority, kAEDefaultTimeout,
                        nullptr, nullptr);
        AEDisposeDesc(&response);
        AEDisposeDesc(&request);
    }
    AEDisposeDesc(&target);
    return status == noErr;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--peer") == 0) {
        return servePeer();
    }
    const testsupport::PrivateBus bus;
    char flag[] = "--peer";
    char* const arguments[] = {argv[0], flag, nullptr};
    pid_t peer = -1;
    if (posix_spawn(&peer, "/proc/self/exe", nullptr, nullptr, arguments, environ) != 0 ||
        !awaitPeer()) {
        std::cerr << "the peer did not start\n";
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    kill(peer, SIGTERM);
    waitpid(peer, nullptr, 0);
    return 0;
}
