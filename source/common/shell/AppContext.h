// SPDX-License-Identifier: MIT
// The host's application context for as long as a scope lasts.
#pragma once

#include "ai/types.h"

/// Calls made while this lives are made for the given plug-in. Without the context suite, and where
/// the host refuses the context, it does nothing. Main thread only; throws nothing.
class AppContext {
public:
    explicit AppContext(SPPluginRef pluginRef) noexcept;
    AppContext(const AppContext&) = delete;
    AppContext& operator=(const AppContext&) = delete;
    ~AppContext();

private:
    AIAppContextHandle context_ = nullptr;
};
