// SPDX-License-Identifier: MIT
// The host's application context for as long as a scope lasts.
#pragma once

#include "ai/types.h"

/// While it lives, calls of the host are made for one plug-in. Without the context suite, or if the
/// host refuses the context, it does nothing. Throws nothing. [main-thread]
class AppContext {
public:
    explicit AppContext(SPPluginRef pluginRef) noexcept;
    AppContext(const AppContext&) = delete;
    AppContext& operator=(const AppContext&) = delete;
    ~AppContext();

private:
    AIAppContextHandle context_ = nullptr;
};
