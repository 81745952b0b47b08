// SPDX-License-Identifier: MIT
// Whom a notification is for.
#include "host/core/notifiers.h"

#include <algorithm>
#include <iterator>

namespace host {

std::vector<AINotifierHandle> Notifiers::ofType(std::string_view type) {
    std::vector<AINotifierHandle> result;
    std::copy_if(all().begin(), all().end(), std::back_inserter(result),
                 [&](AINotifierHandle handle) { return find(handle)->type == type; });
    return result;
}

} // namespace host
