// SPDX-License-Identifier: MIT
// Shared ownership by a count inside the object: SmartPointable is the base of what is shared,
// SmartPointer its holder.
#pragma once

#include "misc/threads/atomiccount.h"
#include "misc/threads/cancellation.h"

#include <cstddef>
#include <type_traits>
#include <utility>

namespace Orvil {

/// Base of objects that delete themselves when their last holder lets go. A fresh object is owned
/// by nobody; one that no SmartPointer ever takes is never deleted by the count.
/// [any-thread] References may be taken and dropped on any thread. Dropping the last one is not a
/// cancellation point, whatever the object's destructor does.
class SmartPointable {
public:
    SmartPointable() noexcept : count_(0) {}
    /// A copy is a fresh object: the count belongs to the object, not to its value.
    SmartPointable(const SmartPointable& /*other*/) noexcept : count_(0) {}
    SmartPointable& operator=(const SmartPointable& /*other*/) noexcept { return *this; }
    // Threads are shared too, and the end of a thread object is a cancellation point: the forced
    // unwinding must find no noexcept destructor in its way.
    virtual ~SmartPointable() noexcept(false) = default;

    void incRef() const noexcept { count_.add(1); }
    /// Deletes the object when the count becomes exactly 0; a count that goes below deletes
    /// nothing.
    void decRef() const noexcept {
        if (count_.add(-1) == 0) {
            deleteThis();
        }
    }

protected:
    /// Drops a reference that the object holds to itself while it takes itself apart.
    void decRefAndKeep() const noexcept { count_.add(-1); }

private:
    void deleteThis() const noexcept {
        const CancellationBlock block;
        delete this;
    }

    mutable AtomicCount count_;
};

/// Holds one reference to a T, which derives from SmartPointable, or nothing.
/// [one-thread] Several pointers to one object may be used on several threads.
template <typename T>
class SmartPointer {
public:
    // Implicit both ways, as callers pass plain pointers and nullptr.
    SmartPointer(T* pointee = nullptr) noexcept : pointee_(pointee) { // NOLINT
        if (pointee_ != nullptr) {
            pointee_->incRef();
        }
    }
    SmartPointer(const SmartPointer& other) noexcept : SmartPointer(other.pointee_) {}
    SmartPointer(SmartPointer&& other) noexcept
        : pointee_(std::exchange(other.pointee_, nullptr)) {}
    /// From a pointer to a derived class.
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    SmartPointer(const SmartPointer<U>& other) noexcept : SmartPointer(other.get()) {} // NOLINT

    ~SmartPointer() {
        if (pointee_ != nullptr) {
            pointee_->decRef();
            pointee_ = nullptr;
        }
    }

    /// Nothing happens when both hold the same object. Otherwise the old reference is dropped
    /// before the new one is taken: the new object must not be kept alive by the old one alone.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the other assignment handles it
    SmartPointer& operator=(const SmartPointer& other) noexcept { return *this = other.pointee_; }
    SmartPointer& operator=(T* pointee) noexcept {
        if (pointee != pointee_) {
            if (pointee_ != nullptr) {
                pointee_->decRef();
            }
            pointee_ = pointee;
            if (pointee_ != nullptr) {
                pointee_->incRef();
            }
        }
        return *this;
    }
    /// Takes the reference over and leaves `other` empty, unless both hold the same object.
    SmartPointer& operator=(SmartPointer&& other) noexcept {
        if (other.pointee_ != pointee_) {
            T* const old = std::exchange(pointee_, std::exchange(other.pointee_, nullptr));
            if (old != nullptr) {
                old->decRef();
            }
        }
        return *this;
    }

    [[nodiscard]] T* get() const noexcept { return pointee_; }
    T& operator*() const noexcept { return *pointee_; }
    T* operator->() const noexcept { return pointee_; }
    explicit operator bool() const noexcept { return pointee_ != nullptr; }

    friend bool operator==(const SmartPointer& a, const SmartPointer& b) noexcept {
        return a.pointee_ == b.pointee_;
    }
    friend bool operator==(const SmartPointer& a, std::nullptr_t) noexcept {
        return a.pointee_ == nullptr;
    }

private:
    T* pointee_;
};

} // namespace Orvil
