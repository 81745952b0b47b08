// SPDX-License-Identifier: MIT
// A plug-in that does one thing wrong: which one, the environment says.
#include "ai/messages.h"
#include "ai/suites.h"
#include "sp/messages.h"

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace {

const SPBasicSuite* basicSuite = nullptr;

bool doesWrong(std::string_view what) {
    const char* const wanted = std::getenv("GLYPHORA_TEST_MISBEHAVIOUR");
    return wanted != nullptr && wanted == what;
}

const void* acquire(const char* name, std::int32_t version) {
    const void* suite = nullptr;
    basicSuite->AcquireSuite(name, version, &suite);
    return suite;
}

SPErr startUp(SPMessageData& data) {
    const auto* const notifiers =
        static_cast<const AINotifierSuite*>(acquire("AI Notifier Suite", 1002));
    SPErr error = notifiers->AddNotifier(data.self, "bad", kAIDocumentOpenedNotifier, nullptr);
    if (doesWrong("other thread")) {
        std::thread([&] {
            error = notifiers->AddNotifier(data.self, "bad", "from a thread", nullptr);
        }).join();
        error = error == kWrongThreadErr ? kNoErr : kBadParameterErr;
    }
    if (doesWrong("failing start")) {
        error = FourChars("OOPS");
    }
    if (doesWrong("leaked suites")) {
        acquire("AI Font Suite", 1003);
        acquire("AI Notifier Suite", 1002);
        return error;
    }
    basicSuite->ReleaseSuite("AI Notifier Suite", 1002);
    if (doesWrong("release without acquire")) {
        basicSuite->ReleaseSuite("AI Notifier Suite", 1002);
    }
    if (doesWrong("leaked blocks")) {
        void* block = nullptr;
        basicSuite->AllocateBlock(100, &block);
        basicSuite->AllocateBlock(23, &block);
    }
    return error;
}

SPErr notified(SPMessageData& data) {
    if (doesWrong("thrown number")) {
        throw int{FourChars("BANG")};
    }
    if (doesWrong("thrown zero")) {
        throw int{kNoErr};
    }
    if (doesWrong("thrown exception")) {
        throw std::runtime_error("out of luck");
    }
    if (doesWrong("thrown something")) {
        throw std::string_view("anything");
    }
    if (doesWrong("error")) {
        return FourChars("OOPS");
    }
    if (doesWrong("forgotten context")) {
        const auto* const contexts =
            static_cast<const AIAppContextSuite*>(acquire("AI Context Suite", 1004));
        AIAppContextHandle context = nullptr;
        contexts->PushAppContext(data.self, &context);
        contexts->PushAppContext(data.self, &context);
        basicSuite->ReleaseSuite("AI Context Suite", 1004);
    }
    if (doesWrong("chatter")) {
        std::cout << "chatter of the plug-in" << std::endl;
    }
    return kNoErr;
}

/// Runs when the module is unmapped.
struct LastWord {
    ~LastWord() {
        const void* suite = nullptr;
        if (doesWrong("call after shut-down") && basicSuite != nullptr &&
            basicSuite->AcquireSuite("AI Font Suite", 1003, &suite) != kNotRunningErr) {
            std::abort();
        }
    }
} lastWord;

} // namespace

extern "C" __attribute__((visibility("default"))) SPErr
PluginMain(const char* caller, const char* selector, void* message) {
    auto& data = *static_cast<SPMessageData*>(message);
    basicSuite = data.basic;
    if (std::string_view(selector) == "Startup") {
        return startUp(data);
    }
    if (std::string_view(caller).substr(0, 3) == "SP " && doesWrong(selector)) {
        return FourChars("OOPS"); // "Unload", "Reload" or "About"
    }
    return std::string_view(caller) == "AI Notifier" ? notified(data) : kNoErr;
}
