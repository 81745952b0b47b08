// SPDX-License-Identifier: MIT
// Owners for what GLib's C interface hands out, and a holder for process-wide state.
#pragma once

#include <gio/gio.h>

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace platform {

template <auto Release>
struct Releaser {
    template <class T>
    void operator()(T* resource) const {
        Release(resource);
    }
};

template <class T>
using ObjectHandle = std::unique_ptr<T, Releaser<g_object_unref>>;
using BytesHandle = std::unique_ptr<GBytes, Releaser<g_bytes_unref>>;
using VariantHandle = std::unique_ptr<GVariant, Releaser<g_variant_unref>>;
using ContextHandle = std::unique_ptr<GMainContext, Releaser<g_main_context_unref>>;
using TextHandle = std::unique_ptr<char, Releaser<g_free>>;
using TextListHandle = std::unique_ptr<char*, Releaser<g_strfreev>>;

/// Receives a GError through out(), and frees it.
class ErrorSlot {
public:
    ErrorSlot() = default;
    ~ErrorSlot() { g_clear_error(&error_); }
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;

    GError** out() {
        g_clear_error(&error_);
        return &error_;
    }
    const GError* get() const { return error_; }
    const char* message() const { return error_ != nullptr ? error_->message : "no reason given"; }
    bool is(GQuark domain, int code) const { return g_error_matches(error_, domain, code) != 0; }

private:
    GError* error_ = nullptr;
};

/// Holds an object that is never destroyed: GDBus' worker thread may use it until the process ends,
/// after the destructors of statics have run.
template <class T>
class Immortal {
public:
    Immortal() : object_(::new (static_cast<void*>(storage_)) T()) {}
    T& operator*() { return *object_; }

private:
    alignas(T) std::byte storage_[sizeof(T)];
    T* object_;
};

} // namespace platform
