// SPDX-License-Identifier: MIT
// The border between plug-ins and host. Every function pointer of a suite is an Entry: it checks
// thread, state and arguments, counts the call, and turns exceptions into codes, so that the
// functions behind it see only calls that are in order.
#pragma once

#include "host/core/callsite.h"
#include "host/core/suiteidentity.h"

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <type_traits>

namespace host {

namespace guard {
/// Held while a service comes, goes or is used off the main thread.
std::mutex& lifeMutex() noexcept;
} // namespace guard

/// The one living object of a type that suite functions work on; null while there is none. Set and
/// read on the main thread; by calls of Threads::Any under guard::lifeMutex().
template <typename Service>
struct Current {
    static inline Service* object = nullptr;
};

/// Makes an object the current one while it lives. Put it last into the class, so that calls end
/// before the other members do.
template <typename Service>
class Published {
public:
    explicit Published(Service& service) : previous_(Current<Service>::object) {
        const std::lock_guard lock(guard::lifeMutex());
        Current<Service>::object = &service;
    }
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;
    ~Published() {
        const std::lock_guard lock(guard::lifeMutex());
        Current<Service>::object = previous_;
    }

private:
    Service* previous_;
};

enum class Threads : bool { Main, Any };
enum class Nulls : bool { Refused, Allowed };

/// A text as a template argument.
template <std::size_t size>
struct CallName {
    consteval CallName(const char (&name)[size]) { std::copy_n(name, size, text); } // NOLINT
    char text[size]{};
};

namespace guard {

/// kNoErr when a call may proceed on the main thread; else the code, and the misbehaviour is noted.
[[nodiscard]] SPErr admit(CallSite& site) noexcept;
/// Inside a handler: the code for the exception being handled, which is reported as an error.
[[nodiscard]] SPErr codeOfException(const CallSite& site) noexcept;

template <typename Argument>
constexpr bool isNull(const Argument& argument) noexcept {
    if constexpr (std::is_pointer_v<Argument>) {
        return argument == nullptr;
    } else {
        return false;
    }
}

} // namespace guard

/// `body` is a function whose first parameter is the service that it works on.
template <typename Suite, CallName name, auto body, Nulls nulls = Nulls::Refused,
          Threads threads = Threads::Main>
struct Entry;

template <typename Suite, CallName name, typename Result, typename Service, typename... Arguments,
          Result (*body)(Service&, Arguments...), Nulls nulls, Threads threads>
struct Entry<Suite, name, body, nulls, threads> {
    static_assert(std::is_void_v<Result> || std::is_same_v<Result, SPErr>);

    static inline CallSite site{SuiteIdentity<Suite>::id.name, name.text};

    static Result call(Arguments... arguments) noexcept {
        if constexpr (std::is_void_v<Result>) {
            run(arguments...);
        } else {
            return run(arguments...);
        }
    }

private:
    static SPErr run(Arguments... arguments) noexcept {
        if constexpr (threads == Threads::Any) {
            const std::lock_guard lock(guard::lifeMutex());
            const SPErr fault = site.enter();
            return fault != kNoErr ? fault : perform(arguments...);
        } else {
            const SPErr refusal = guard::admit(site);
            return refusal != kNoErr ? refusal : perform(arguments...);
        }
    }

    static SPErr perform(Arguments... arguments) noexcept {
        if constexpr (nulls == Nulls::Refused) {
            if ((guard::isNull(arguments) || ...)) {
                return kBadParameterErr;
            }
        }
        Service* const service = Current<Service>::object;
        if (service == nullptr) {
            return kNotRunningErr;
        }
        try {
            if constexpr (std::is_void_v<Result>) {
                body(*service, arguments...);
                return kNoErr;
            } else {
                return body(*service, arguments...);
            }
        } catch (...) {
            return guard::codeOfException(site);
        }
    }
};

} // namespace host
