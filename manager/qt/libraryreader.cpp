// SPDX-License-Identifier: MIT
#include "manager/qt/libraryreader.h"

#include "manager/cli/knownsets.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace manager {

Library& Desk::library() {
    if (!library_ || library_->isReplaced()) {
        library_.reset();
        // A window neither begins one in the midst of another's work nor takes the rest of one that
        // is cut for empty.
        library_ = openLibrary(
            places_, [this] { return containersOnDisk(places_); }, [](const std::string&) {},
            IndexCheck::Never);
    }
    return *library_;
}

Activation& Desk::activation() {
    if (!activation_) {
        activation_.emplace(places_);
    }
    return *activation_;
}

LibraryReader::LibraryReader(const Places& places, std::function<void(const QString&)> fail)
    : fail_(std::move(fail)), thread_([this, places] { serve(places); }) {}

LibraryReader::~LibraryReader() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void LibraryReader::run(Work work) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(work));
    }
    wake_.notify_one();
}

void LibraryReader::runNext(Work work) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_front(std::move(work));
    }
    wake_.notify_one();
}

void LibraryReader::finish() {
    {
        std::unique_lock lock(mutex_);
        idle_.wait(lock, [this] { return waiting_.empty() && !isAtWork_; });
    }
    QCoreApplication::sendPostedEvents(this, QEvent::User);
}

unsigned LibraryReader::setDrawing(std::vector<CommandFont> fonts) {
    const std::lock_guard lock(mutex_);
    drawing_ = std::move(fonts);
    return ++drawingNumber_;
}

void LibraryReader::read(std::function<void(std::shared_ptr<const LibraryView>)> take) {
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(isReadWaiting_, true)) {
            return;
        }
    }
    run([this, take = std::move(take)](Desk& desk) -> Taker {
        std::vector<CommandFont> fonts;
        unsigned number = 0;
        {
            const std::lock_guard lock(mutex_);
            isReadWaiting_ = false; // news from now on are not in it
            fonts = drawing_;
            number = drawingNumber_;
        }
        FaceTable table(desk.library());
        const auto active = desk.activation().active([](const std::string&) {});
        FaceStates states(table, active);
        std::vector<AskedFont> drawing;
        if (!fonts.empty()) {
            drawing = readDrawing(desk.library(), desk.activation(), fonts);
        }
        FaceCopies copies(table, desk.library().duplicates());
        auto view = std::make_shared<const LibraryView>(LibraryView{
            std::move(table), std::move(states), std::move(drawing), std::move(copies), number});
        return [take, view = std::move(view)] { take(view); };
    });
}

void LibraryReader::drop(std::shared_ptr<const LibraryView> view) {
    run([view = std::move(view)](Desk&) { return Taker(); });
}

void LibraryReader::find(FaceQuery query, std::function<void(FoundFaceIds)> take) {
    const unsigned number = ++newestQuery_;
    run([this, number, query = std::move(query), take = std::move(take)](Desk& desk) -> Taker {
        std::vector<FaceId> ids;
        if (number == newestQuery_) {
            const auto keys = desk.library().familyKeys(query);
            ids.reserve(keys.size());
            for (const auto& [id, key] : keys) {
                ids.push_back(FaceId{id});
            }
        }
        auto found = std::make_shared<const std::vector<FaceId>>(std::move(ids));
        return [this, number, take, found = std::move(found)] {
            if (number == newestQuery_) {
                take(found);
            }
        };
    });
}

void LibraryReader::serve(Places places) {
    Desk desk(std::move(places));
    for (;;) {
        Work work;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
            if (ends_) {
                return;
            }
            work = std::move(waiting_.front());
            waiting_.pop_front();
            isAtWork_ = true;
        }
        Taker taker;
        try {
            taker = work(desk);
        } catch (const std::exception& error) {
            taker = [this, text = QString::fromUtf8(error.what())] { fail_(text); };
        }
        if (taker) {
            {
                const std::lock_guard lock(mutex_);
                done_.push_back(std::move(taker));
            }
            QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        }
        {
            const std::lock_guard lock(mutex_);
            isAtWork_ = false;
        }
        idle_.notify_all();
    }
}

void LibraryReader::customEvent(QEvent* /*event*/) {
    Taker taker;
    {
        const std::lock_guard lock(mutex_);
        taker = std::move(done_.front());
        done_.pop_front();
    }
    taker();
}

} // namespace manager
