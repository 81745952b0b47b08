// SPDX-License-Identifier: MIT
// A stack of contexts with handles that recognise a stale one.
#include "host/core/contexts.h"

namespace host {

AIAppContextHandle Contexts::push(PluginNumber plugin) {
    stack_.push_back(nullptr);
    try {
        stack_.back() = table_.add(plugin);
    } catch (...) {
        stack_.pop_back();
        throw;
    }
    return stack_.back();
}

bool Contexts::pop(AIAppContextHandle context) noexcept {
    if (stack_.empty() || stack_.back() != context) {
        return false;
    }
    table_.remove(context);
    stack_.pop_back();
    return true;
}

std::size_t Contexts::cutTo(std::size_t depth) noexcept {
    std::size_t cut = 0;
    while (stack_.size() > depth && pop(stack_.back())) {
        ++cut;
    }
    return cut;
}

PluginNumber Contexts::innermost() noexcept {
    const PluginNumber* const plugin = stack_.empty() ? nullptr : table_.find(stack_.back());
    return plugin == nullptr ? noPlugin : *plugin;
}

} // namespace host
