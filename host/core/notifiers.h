// SPDX-License-Identifier: MIT
// Registrations for notifications.
#pragma once

#include "ai/types.h"
#include "host/core/registrations.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Notifier {
    PluginNumber plugin = noPlugin;
    std::string name;
    std::string type;
};

/// [main-thread]
class Notifiers : public Registrations<Notifier, AINotifierHandle> {
public:
    /// Those of one type; a copy, because plug-ins register while they are being notified.
    [[nodiscard]] std::vector<AINotifierHandle> ofType(std::string_view type);
};

} // namespace host
