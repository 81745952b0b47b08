// SPDX-License-Identifier: MIT
#include "manager/qt/guests.h"

#include "platform/application.h"

#include <utility>

namespace manager {

Guests::Guests(std::function<void(const WindowRequest&)> take)
    : requests_(std::move(take)), events_(QSocketNotifier::Read) {
    const int descriptor = PLEventFileDescriptor();
    if (descriptor < 0) {
        return;
    }
    QObject::connect(&events_, &QSocketNotifier::activated, &events_, [this] {
        if (PLDispatchPendingEvents() < 0) {
            events_.setEnabled(false); // the bus is gone
        }
    });
    events_.setSocket(descriptor);
    events_.setEnabled(true);
}

Guests::~Guests() {
    events_.setEnabled(false);
    PLUnregisterApplication();
}

} // namespace manager
