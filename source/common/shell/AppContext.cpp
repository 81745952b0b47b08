// SPDX-License-Identifier: MIT
// Pushing and popping the host's application context.
#include "AppContext.h"

#include "suitepointers.h"

AppContext::AppContext(SPPluginRef pluginRef) noexcept {
    if (sAIAppContext == nullptr || sAIAppContext->PushAppContext(pluginRef, &context_) != kNoErr) {
        context_ = nullptr;
    }
}

AppContext::~AppContext() {
    // The suites may have been released inside the scope; without them nothing can be popped, and
    // the host takes the context back after the message.
    if (sAIAppContext != nullptr && context_ != nullptr) {
        sAIAppContext->PopAppContext(context_);
    }
}
