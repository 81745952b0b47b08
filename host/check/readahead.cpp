// SPDX-License-Identifier: MIT
// Reading many drawings at a time.
#include "host/check/drawingfaces.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <utility>

namespace host {

namespace {

class ReadAhead {
public:
    ReadAhead(std::span<const std::filesystem::path> files, const SvgOptions& options,
              unsigned threads)
        : files_(files), options_(options), slots_(std::size_t{threads} * readAheadPerThread) {
        for (unsigned i = 0; i < threads; ++i) {
            threads_.emplace_back([this](const std::stop_token& stop) { work(stop); });
        }
    }
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    ~ReadAhead() {
        // All at once: each may be in the midst of a large drawing.
        std::for_each(threads_.begin(), threads_.end(),
                      [](std::jthread& thread) { thread.request_stop(); });
    }

    /// Waits for the next in order.
    DrawingFaces take() {
        std::unique_lock lock(mutex_);
        std::optional<DrawingFaces>& slot = slots_[taken_ % slots_.size()];
        changed_.wait(lock, [&] { return slot.has_value(); });
        DrawingFaces drawing = std::move(*slot);
        slot.reset();
        ++taken_;
        changed_.notify_all();
        return drawing;
    }

private:
    static constexpr std::size_t readAheadPerThread = 16;

    void work(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        for (;;) {
            if (!changed_.wait(lock, stop, [this] { return next_ < taken_ + slots_.size(); }) ||
                next_ == files_.size()) {
                return;
            }
            const std::size_t number = next_++;
            lock.unlock();
            DrawingFaces drawing = readFaces(files_[number], options_);
            lock.lock();
            slots_[number % slots_.size()] = std::move(drawing);
            changed_.notify_all();
        }
    }

    std::span<const std::filesystem::path> files_;
    const SvgOptions& options_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::vector<std::optional<DrawingFaces>> slots_; ///< of drawing i, at i modulo their number
    std::size_t next_ = 0;                           ///< to be read
    std::size_t taken_ = 0;
    std::vector<std::jthread> threads_; ///< last: they use the others
};

} // namespace

void readAllFaces(std::span<const std::filesystem::path> files, const SvgOptions& options,
                  unsigned threads, const std::function<void(DrawingFaces)>& take) {
    ReadAhead ahead(files, options, std::max(threads, 1U));
    for (std::size_t i = 0; i < files.size(); ++i) {
        take(ahead.take());
    }
}

} // namespace host
