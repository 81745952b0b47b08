// SPDX-License-Identifier: MIT
// Changes what is active in a thread of its own, so that nobody who asks waits for a disk, a lock
// or a font.
#pragma once

#include "manager/activation/activation.h"
#include "manager/library/places.h"
#include "system/descriptor.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace manager {

/// What came of it.
struct ActivatorNews {
    std::vector<std::pair<ContainerId, ActivationOutcome>> activated;
    std::vector<Withdrawal> withdrawn;
    std::vector<std::string> mended;   ///< lines, see Activation::recover
    std::vector<std::string> problems; ///< lines
    std::optional<DesktopFaces> desktop;
    std::optional<std::vector<Reason>> ending; ///< see Activation::endingReasons
};

/// [one-thread] Begins with what a crash left and with what is due by now. Settles a while after
/// each change.
class Activator {
public:
    /// Throws Error.
    explicit Activator(const Places& places);
    Activator(const Activator&) = delete;
    Activator& operator=(const Activator&) = delete;
    /// Gives up what has not been begun, and settles what was done.
    ~Activator();

    /// Readable when there is news.
    [[nodiscard]] int descriptor() const { return newsFlag_.get(); }
    /// The news since the last call.
    [[nodiscard]] ActivatorNews take();

    /// Activates them, in turns with those of other calls.
    void activate(std::vector<ContainerFonts> containers);
    /// Has the desktop's faces told, read anew when they may be others by now.
    void readDesktop();
    /// Takes away what is due, and has the reasons told that will end.
    void withdraw();

private:
    using Clock = std::chrono::steady_clock;
    using Queue = std::list<std::deque<ContainerFonts>>;

    void run();
    /// Unless it is done. Whether it is now.
    bool recover(Activation& activation, ActivatorNews& news);
    /// Something of what waits, or nothing when the next settling is due or the end has come.
    std::function<void(Activation&, ActivatorNews&)> next();
    std::vector<ContainerFonts> takeSome();
    void publish(ActivatorNews news);

    Places places_;
    sys::Descriptor newsFlag_;
    std::mutex mutex_;
    std::condition_variable wake_;
    Queue queue_; ///< those of each call
    bool desktopWanted_ = false;
    bool withdrawalWanted_ = true;
    bool ending_ = false;
    // Of the thread.
    std::optional<Clock::time_point> settling_;
    std::optional<Clock::time_point> retry_; ///< of what withdraw() asks for
    bool isRecovered_ = false;
    ActivatorNews news_;
    std::thread thread_; ///< last: it uses the others
};

} // namespace manager
