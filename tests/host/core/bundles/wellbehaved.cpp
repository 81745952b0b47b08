// SPDX-License-Identifier: MIT
// A plug-in that does everything right, and tells by alerts what reaches it.
#include "adm/suites.h"
#include "ai/messages.h"
#include "ai/suites.h"
#include "sp/messages.h"

#include <memory>
#include <string>
#include <string_view>

namespace {

/// What survives unloading; the host keeps it.
struct Kept {
    int notifications = 0;
    const ADMBasicSuite* dialogs = nullptr;
};

void acquire(const SPBasicSuite* basic, Kept& kept) {
    const void* suite = nullptr;
    basic->AcquireSuite("ADM Basic Suite", 10, &suite);
    kept.dialogs = static_cast<const ADMBasicSuite*>(suite);
}

void release(const SPBasicSuite* basic, Kept& kept) {
    basic->ReleaseSuite("ADM Basic Suite", 10);
    kept.dialogs = nullptr;
}

SPErr startUp(SPMessageData& data) {
    auto kept = std::make_unique<Kept>();
    acquire(data.basic, *kept);
    const void* suite = nullptr;
    data.basic->AcquireSuite("AI Notifier Suite", 1002, &suite);
    const auto* const notifiers = static_cast<const AINotifierSuite*>(suite);
    const SPErr error =
        notifiers->AddNotifier(data.self, "wellbehaved", kAIDocumentOpenedNotifier, nullptr);
    data.basic->ReleaseSuite("AI Notifier Suite", 1002);
    data.globals = kept.release();
    return error;
}

SPErr dispatch(std::string_view caller, std::string_view selector, SPMessageData& data) {
    if (selector == "Startup") {
        return startUp(data);
    }
    std::unique_ptr<Kept> kept(static_cast<Kept*>(data.globals));
    if (selector == "Shutdown") {
        release(data.basic, *kept);
        data.globals = nullptr;
        return kNoErr;
    }
    if (selector == "Unload") {
        release(data.basic, *kept);
    } else if (selector == "Reload") {
        acquire(data.basic, *kept);
    } else if (caller == "AI Notifier") {
        char greeting[64] = "";
        kept->dialogs->GetIndexString(data.self, 16000, 1, greeting, sizeof greeting);
        const std::string text =
            greeting + std::string(" ") + std::to_string(++kept->notifications);
        kept->dialogs->MessageAlert(text.c_str());
    }
    data.globals = kept.release();
    return kNoErr;
}

} // namespace

extern "C" __attribute__((visibility("default"))) SPErr
PluginMain(const char* caller, const char* selector, void* message) {
    return dispatch(caller, selector, *static_cast<SPMessageData*>(message));
}
