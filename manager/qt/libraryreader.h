// SPDX-License-Identifier: MIT
// The library, read in a thread of its own, so that the window never waits for a disk or a lock.
#pragma once

#include "manager/activation/activation.h"
#include "manager/view/facelisting.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace manager {

/// What work is done with, in the reader's thread. Opened when it is asked for first, and anew when
/// the index was replaced. Throws Error.
class Desk {
public:
    explicit Desk(Places places) : places_(std::move(places)) {}
    [[nodiscard]] Library& library();
    [[nodiscard]] Activation& activation();

private:
    Places places_;
    std::unique_ptr<Library> library_;
    std::optional<Activation> activation_;
};

/// [main-thread]
class LibraryReader : public QObject {
public:
    /// Called from the loop.
    using Taker = std::function<void()>;
    /// Called in the thread; what it gives, if anything, is called from the loop afterwards. May
    /// throw Error.
    using Work = std::function<Taker(Desk& desk)>;

    /// `fail` is told what went wrong.
    LibraryReader(const Places& places, std::function<void(const QString&)> fail);
    LibraryReader(const LibraryReader&) = delete;
    LibraryReader& operator=(const LibraryReader&) = delete;
    /// Waits for the work that is under way; the rest is dropped.
    ~LibraryReader() override;

    void run(Work work);
    /// The same, before all that waits.
    void runNext(Work work);
    /// Waits until all that was asked for is done and taken.
    void finish();
    /// Has every reading from now on find what there is for these fonts. The number of the drawing
    /// that these readings have.
    unsigned setDrawing(std::vector<CommandFont> fonts);
    /// Reads all of the library. Asked for again before that begins, it is read once.
    void read(std::function<void(std::shared_ptr<const LibraryView>)> take);
    /// Frees a view in the thread, as that takes long of a large one.
    void drop(std::shared_ptr<const LibraryView> view);
    using FoundFaceIds = std::shared_ptr<const std::vector<FaceId>>;
    /// Finds all faces of a query, whatever its page. Only the newest query is answered.
    void find(FaceQuery query, std::function<void(FoundFaceIds)> take);
    /// None is wanted any more.
    void dropQuery() { ++newestQuery_; }

protected:
    void customEvent(QEvent* event) override; ///< takers have come

private:
    void serve(Places places);

    std::function<void(const QString&)> fail_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable idle_;
    bool isAtWork_ = false;
    std::deque<Work> waiting_;
    std::deque<Taker> done_;
    std::vector<CommandFont> drawing_;
    unsigned drawingNumber_ = 0;
    bool isReadWaiting_ = false;
    std::atomic<unsigned> newestQuery_ = 0;
    bool ends_ = false;
    std::thread thread_; ///< last: it uses the others
};

} // namespace manager
