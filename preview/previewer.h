// SPDX-License-Identifier: MIT
// Has lines drawn in a process apart while a window goes on, the newest request first.
//
// A window asks for what it is about to show, cancels what scrolled away, watches `descriptor()` in
// its event loop and calls `take()` when that is readable. A font that ends the process or takes
// too long costs the window nothing but its own picture. The window's thread looks at no font file
// and waits for no process: a disk that does not answer holds up neither.
#pragma once

#include "preview/cache.h"
#include "preview/wire.h"
#include "system/child.h"

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

namespace preview {

/// Where `glyphora-preview` stands, seen from the running program: beside it, or where it is
/// installed.
[[nodiscard]] std::filesystem::path previewProgram();

struct PreviewSettings {
    std::filesystem::path program = previewProgram();
    std::chrono::milliseconds timePerLine{5'000};
    /// A face that took too long may lie on a disk that was slow: it is not asked for before this.
    std::chrono::milliseconds timeUntilRetry{10'000};
    unsigned processorSeconds = 4;               ///< for a line
    std::size_t memory = std::size_t{1} << 30U;  ///< bytes of address space
    std::size_t cached = std::size_t{64} << 20U; ///< bytes of answers kept
};

using RequestId = std::uint64_t;

struct Finished {
    RequestId id = 0;
    SharedAnswer answer; ///< never null
};

/// [one-thread]
class Previewer {
public:
    /// Throws `std::system_error` when the system has no descriptor left. The process is started by
    /// the first line to be drawn.
    explicit Previewer(PreviewSettings settings);
    Previewer(const Previewer&) = delete;
    Previewer& operator=(const Previewer&) = delete;
    ~Previewer() { dropChild(); }

    /// Only notes it: `take()` answers it, once, unless it is cancelled.
    [[nodiscard]] RequestId request(Request request);
    /// What was answered already is passed over.
    void cancel(RequestId id);

    /// Readable when `take()` has something to do. Valid as long as this object.
    [[nodiscard]] int descriptor() const { return events_.get(); }
    /// What was answered since the last call. Does not block.
    [[nodiscard]] std::vector<Finished> take();

private:
    using Clock = std::chrono::steady_clock;
    /// A file and a face in it.
    using FaceKey = std::pair<std::string, std::uint32_t>;

    struct Work {
        RequestId id;
        Request request;
        std::string order; ///< to draw it; the key of the cache
        Clock::time_point deadline;
        RequestId lastAsked;                  ///< when it began
        std::optional<FileIdentity> identity; ///< once the process has looked

        [[nodiscard]] FaceKey face() const { return {request.file, request.face}; }
    };

    /// What may be said before the process has looked at the file, and after.
    [[nodiscard]] SharedAnswer knownOfPath(const FaceKey& face);
    [[nodiscard]] SharedAnswer knownOfFile(const Work& work);
    void begin();
    void start();
    void send(const std::string& order);
    void receive();
    void understand();
    [[nodiscard]] bool takeLook(std::string_view body);
    void answerOrDraw(const FileIdentity& identity);
    [[nodiscard]] bool takeDrawing(std::string_view body);
    void learnEnding();
    void finish(const SharedAnswer& answer);
    /// Whose fault it is that nothing was drawn.
    enum class Fault {
        Face,  ///< it fails until its file changes, if that is known
        Delay, ///< it may succeed later
        Other,
    };
    void fail(const std::string& why, Fault fault);
    void dropChild();
    void setTimer();

    PreviewSettings settings_;
    sys::Descriptor events_; ///< an epoll of the timer and the child's socket
    sys::Descriptor timer_;
    std::optional<sys::Child> child_;
    bool isEnding_ = false; ///< the child, by itself; how is not known yet
    std::map<RequestId, Request> waiting_;
    std::optional<Work> current_;
    bool isCancelled_ = false; ///< the current one; its answer is still worth keeping
    std::string received_;
    /// What to say of a face that ended the process, as long as its file is this one; or that kept
    /// it too long, whatever its file is, up to a time.
    struct Danger {
        SharedAnswer answer;
        std::optional<FileIdentity> identity;
        Clock::time_point end;
    };
    std::map<FaceKey, Danger> dangerous_;
    /// The last look, as lines of a file come together: it holds for those that had been asked for.
    struct Looked {
        std::string file;
        FileIdentity identity{};
        RequestId last = 0;
    } looked_;
    Cache cache_;
    std::vector<Finished> finished_;
    RequestId lastId_ = 0;
};

} // namespace preview
