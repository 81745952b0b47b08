// SPDX-License-Identifier: MIT
// Registrations for notifications.
#pragma once

#include "ai/types.h"
#include "host/core/blocks.h"
#include "host/core/handletable.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Notifier {
    PluginNumber plugin = noPlugin;
    std::string name;
    std::string type;
};

/// [main-thread] Registrations are numbered in the order in which they were made; those of a
/// plug-in live until its shut-down, over unloading as well.
class Notifiers {
public:
    AINotifierHandle add(Notifier notifier);
    /// nullptr for a handle that is not live. Its texts stay where they are while it lives.
    const Notifier* find(AINotifierHandle handle) noexcept { return table_.find(handle); }
    const std::vector<AINotifierHandle>& all() const noexcept { return order_; }
    /// Those of one type; a copy, because plug-ins register while they are being notified.
    std::vector<AINotifierHandle> ofType(std::string_view type);
    void removeAllOf(PluginNumber plugin);

private:
    HandleTable<Notifier, AINotifierHandle> table_;
    std::vector<AINotifierHandle> order_;
};

} // namespace host
