// SPDX-License-Identifier: MIT
// The forwarders of the module, and how each keeps its place in the handler's list.
#include "newsforwarder.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

GLY::IGLYNotifyHandler& handler() {
    return *GLY::NotifiyHandlerFactory::getNotifyHandler(false);
}

} // namespace

NewsForwarder* NewsForwarder::forwardTo(GLY::IGLYChangeNotifier& observer) {
    static std::vector<std::unique_ptr<NewsForwarder>> all;
    auto found = std::find_if(all.begin(), all.end(), [](const auto& forwarder) {
        return forwarder->observer_ == nullptr;
    });
    if (found == all.end()) {
        all.push_back(std::unique_ptr<NewsForwarder>(new NewsForwarder));
        found = std::prev(all.end());
    }
    NewsForwarder& forwarder = **found;
    if (!forwarder.isRegistered_) { // twice would mean to be told twice
        handler().registerNotifer(&forwarder);
        forwarder.isRegistered_ = true;
        forwarder.wasTold_ = false;
    }
    forwarder.observer_ = &observer;
    return &forwarder;
}

void NewsForwarder::forget() {
    observer_ = nullptr;
    handler().unregisterNotifer(this);
    isRegistered_ = !wasTold_; // what waits to be added is added after what is removed
}

std::int32_t NewsForwarder::OnGLYNotify(const std::string& text) {
    wasTold_ = true;
    return observer_ != nullptr ? observer_->OnGLYNotify(text) : 0;
}
