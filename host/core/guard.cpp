// SPDX-License-Identifier: MIT
// Which calls are admitted, and what becomes of exceptions.
#include "host/core/guard.h"

#include "host/core/core.h"

#include <exception>
#include <new>
#include <thread>

namespace host::guard {

namespace {

SPErr refuseOtherThread(CallSite& site) noexcept {
    const std::lock_guard lock(lifeMutex());
    Core* const core = Current<Core>::object;
    if (core == nullptr) {
        return kNotRunningErr;
    }
    core->noteCallOffMainThread(site);
    return kWrongThreadErr;
}

} // namespace

std::mutex& lifeMutex() noexcept {
    static std::mutex mutex;
    return mutex;
}

SPErr admit(CallSite& site) noexcept {
    if (!Core::isMainThread()) {
        return refuseOtherThread(site);
    }
    Core* const core = Current<Core>::object;
    if (core == nullptr) {
        return kNotRunningErr;
    }
    if (!core->isServing()) {
        core->noteCallOutsideMessages(site);
        return kNotRunningErr;
    }
    return site.enter();
}

SPErr codeOfException(const CallSite& site) noexcept {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return kOutOfMemoryErr;
    } catch (const std::exception& problem) {
        if (Core* const core = Current<Core>::object; core != nullptr && Core::isMainThread()) {
            core->frontend().reportError(site.name() + ": " + problem.what());
        }
        return kBadParameterErr;
    } catch (...) {
        return kBadParameterErr;
    }
}

} // namespace host::guard
