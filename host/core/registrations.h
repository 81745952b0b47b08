// SPDX-License-Identifier: MIT
// What plug-ins have registered, in order of registration.
#pragma once

#include "host/core/blocks.h"
#include "host/core/handletable.h"

#include <utility>
#include <vector>

namespace host {

/// [main-thread] Of a type that has a member `plugin`. The registrations of a plug-in live until
/// its shut-down, over unloading as well.
template <typename Registration, typename Handle>
class Registrations {
public:
    Handle add(Registration registration) {
        order_.push_back(table_.add(std::move(registration)));
        return order_.back();
    }
    /// nullptr for a handle that is not live. Its texts stay where they are while it lives.
    const Registration* find(Handle handle) noexcept { return table_.find(handle); }
    const std::vector<Handle>& all() const noexcept { return order_; }
    void remove(Handle handle) noexcept {
        if (table_.remove(handle)) {
            std::erase(order_, handle);
        }
    }
    void removeAllOf(PluginNumber plugin) {
        std::erase_if(order_, [&](Handle handle) {
            return table_.find(handle)->plugin == plugin && table_.remove(handle);
        });
    }

protected:
    Registration* change(Handle handle) noexcept { return table_.find(handle); }

private:
    HandleTable<Registration, Handle> table_;
    std::vector<Handle> order_;
};

} // namespace host
