// SPDX-License-Identifier: MIT
// The application contexts, each of which says for which plug-in calls are being made.
#pragma once

#include "ai/types.h"
#include "host/core/blocks.h"
#include "host/core/handletable.h"

#include <vector>

namespace host {

/// [main-thread] Contexts nest.
class Contexts {
public:
    [[nodiscard]] AIAppContextHandle push(PluginNumber plugin);
    /// False when `context` is not the innermost one; nothing is popped then.
    [[nodiscard]] bool pop(AIAppContextHandle context) noexcept;
    std::size_t depth() const noexcept { return stack_.size(); }
    /// Pops down to a depth and says how many contexts that took.
    [[nodiscard]] std::size_t cutTo(std::size_t depth) noexcept;
    /// noPlugin when there is none.
    PluginNumber innermost() noexcept;

private:
    HandleTable<PluginNumber, AIAppContextHandle> table_;
    std::vector<AIAppContextHandle> stack_;
};

} // namespace host
