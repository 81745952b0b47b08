// SPDX-License-Identifier: MIT
// The observers of library changes, and the process-wide handler.
#include "GLYNotifyHandler.h"

#include "MacGLYNotifyHandler.h"
#include "misc/xml/ixmlparser.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>

namespace GLY {

namespace {

/// Owns the process-wide handler; its end is the module's end.
class HandlerOwner {
public:
    HandlerOwner() = default;
    HandlerOwner(const HandlerOwner&) = delete;
    HandlerOwner& operator=(const HandlerOwner&) = delete;
    ~HandlerOwner() {
        if (handler_ != nullptr) {
            handler_->~MacGLYNotifyHandler();
        }
    }

    IGLYNotifyHandler* get() {
        if (handler_ == nullptr) {
            make();
        }
        return handler_;
    }
    IGLYNotifyHandler* renew() {
        if (handler_ != nullptr) {
            handler_->dropStorage();
            handler_ = nullptr;
        }
        make();
        return handler_;
    }

private:
    // The storage is released without the destructor of what stands in it.
    struct alignas(MacGLYNotifyHandler) Storage {
        std::byte bytes[sizeof(MacGLYNotifyHandler)];
    };

    void make() {
        storage_ = std::make_unique<Storage>();
        handler_ = new (storage_.get()) MacGLYNotifyHandler; // owned with its storage
    }

    std::unique_ptr<Storage> storage_;
    MacGLYNotifyHandler* handler_ = nullptr;
};

} // namespace

void BasicGLYNotifyHandler::push() {}

void BasicGLYNotifyHandler::registerNotifer(IGLYChangeNotifier* notifier) {
    toAdd_.push_back(notifier);
}

void BasicGLYNotifyHandler::unregisterNotifer(IGLYChangeNotifier* notifier) {
    toRemove_.push_back(notifier);
}

void BasicGLYNotifyHandler::clearNotifiers() {
    active_.clear();
}

void BasicGLYNotifyHandler::notifiyAll(const std::string& text) {
    // Refuses what is not XML. Whatever the command is, everybody gets the whole text.
    if (const Orvil::XmlDocumentHolder parser; parser) {
        parser->parseString(text);
    }

    for (IGLYChangeNotifier* const notifier : toRemove_) {
        const auto found = std::find(active_.begin(), active_.end(), notifier);
        if (found != active_.end()) {
            active_.erase(found);
        }
    }
    toRemove_.clear();
    active_.insert(active_.end(), toAdd_.begin(), toAdd_.end());
    toAdd_.clear();

    // By index: an observer may clear the list, or cause another round, in the middle of this one.
    for (std::size_t i = 0; i < active_.size(); ++i) {
        active_[i]->OnGLYNotify(text);
    }
}

void BasicGLYNotifyHandler::dropLists() noexcept {
    std::vector<IGLYChangeNotifier*>().swap(active_);
    std::vector<IGLYChangeNotifier*>().swap(toAdd_);
    std::vector<IGLYChangeNotifier*>().swap(toRemove_);
}

IGLYNotifyHandler* NotifiyHandlerFactory::getNotifyHandler(bool renew) {
    static HandlerOwner owner;
    return renew ? owner.renew() : owner.get();
}

} // namespace GLY
