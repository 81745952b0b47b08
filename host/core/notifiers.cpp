// SPDX-License-Identifier: MIT
// A table of registrations and their order.
#include "host/core/notifiers.h"

#include <utility>

namespace host {

AINotifierHandle Notifiers::add(Notifier notifier) {
    order_.push_back(table_.add(std::move(notifier)));
    return order_.back();
}

std::vector<AINotifierHandle> Notifiers::ofType(std::string_view type) {
    std::vector<AINotifierHandle> result;
    for (const AINotifierHandle handle : order_) {
        if (table_.find(handle)->type == type) {
            result.push_back(handle);
        }
    }
    return result;
}

void Notifiers::removeAllOf(PluginNumber plugin) {
    std::erase_if(order_, [&](AINotifierHandle handle) {
        return table_.find(handle)->plugin == plugin && table_.remove(handle);
    });
}

} // namespace host
