// SPDX-License-Identifier: MIT
// The life of a plug-in, and the one guard around its entry point.
#include "host/core/plugin.h"

#include "host/core/core.h"
#include "host/core/text.h"

#include <exception>
#include <utility>

namespace host {

Plugin::Plugin(Core& core, PluginNumber number, const Bundle& bundle)
    : Plugin(core, number, bundle.name(), nullptr, bundle.resources) {
    bundle_ = bundle;
    const Core::LoadScope loading(core_, *this);
    module_.emplace(bundle.module);
    entry_ = module_->entry();
}

Plugin::Plugin(Core& core, PluginNumber number, std::string name, SPEntryProc entry,
               std::filesystem::path resources)
    : core_(core), number_(number), name_(std::move(name)), entry_(entry),
      resources_(std::move(resources)), strings_(resources_, [&core](std::string_view problem) {
          core.frontend().reportError(problem);
      }) {}

Plugin::~Plugin() {
    if (module_) {
        const Core::LoadScope unloading(core_, *this);
        module_->unmap();
    }
}

SPPluginRef Plugin::ref() const noexcept {
    return HandleBits{number_, 0}.pack<SPPluginRef>();
}

void Plugin::startUp() {
    SPInterfaceMessage message;
    state_ = PluginState::Running; // it makes calls while it starts
    const SPErr error = send("SP Interface", "Startup", message);
    if (error == kNoErr) {
        return;
    }
    if (globals_ != nullptr) {
        // It was interrupted by what it threw: give it the chance to put away what it has made.
        SPInterfaceMessage end;
        send("SP Interface", "Shutdown", end);
    }
    leave();
    throw PluginError(name_ + ": the plug-in failed to start with error " + errorText(error));
}

SPErr Plugin::shutDown() {
    if (state_ == PluginState::Unmapped && bundle_) {
        reload();
    }
    if (state_ != PluginState::Running) {
        return kNotRunningErr;
    }
    SPInterfaceMessage message;
    const SPErr error = send("SP Interface", "Shutdown", message);
    leave();
    return error;
}

void Plugin::leave() {
    core_.takeBackFrom(*this, Core::Leaving::ForGood);
    state_ = PluginState::Ended;
    unmap();
    core_.takeBackBlocksOf(*this); // the module's static destructors may have freed some
}

bool Plugin::unload() {
    if (state_ != PluginState::Running || uses_ > 0 || core_.isServing(*this)) {
        core_.frontend().reportError(name_ + ": the plug-in is in use and stays loaded");
        return false;
    }
    SPAccessMessage message;
    const SPErr error = send("SP Access", "Unload", message);
    if (error != kNoErr) {
        core_.frontend().reportError(name_ + ": the plug-in refuses to be unloaded with error " +
                                     errorText(error));
        return false;
    }
    core_.takeBackFrom(*this, Core::Leaving::ForAWhile);
    state_ = PluginState::Unmapped;
    unmap();
    return true;
}

SPErr Plugin::reload() {
    if (state_ != PluginState::Unmapped) {
        return kNotRunningErr;
    }
    if (bundle_) {
        const Core::LoadScope loading(core_, *this);
        module_.emplace(bundle_->module);
        entry_ = module_->entry();
    }
    state_ = PluginState::Running;
    SPAccessMessage message;
    return send("SP Access", "Reload", message);
}

SPErr Plugin::deliver(const char* caller, const char* selector, SPMessageData& data,
                      void* message) {
    if (state_ != PluginState::Running) {
        return kNotRunningErr;
    }
    data = {&core_.basicSuite(), ref(), globals_};
    const std::size_t contexts = core_.contexts().depth();
    SPErr answer = kNoErr;
    {
        const Core::ServeScope serving(core_, this);
        answer = callEntry(caller, selector, message);
    }
    globals_ = data.globals;
    const std::size_t left = core_.contexts().cutTo(contexts);
    if (left > 0) {
        misbehaves("left " + std::to_string(left) +
                   " application context(s) on the stack after \"" + caller + "\"/\"" + selector +
                   "\"");
    }
    return answer;
}

SPErr Plugin::callEntry(const char* caller, const char* selector, void* message) {
    const auto threw = [&](const std::string& what) {
        misbehaves("threw " + what + " out of \"" + caller + "\"/\"" + selector + "\"");
    };
    try {
        return entry_(caller, selector, message);
    } catch (const std::exception& problem) {
        threw(std::string("an exception (") + problem.what() + ")");
    } catch (int error) {
        threw("the number " + errorText(error));
        return error == kNoErr ? kUnhandledMsgErr : error;
    } catch (...) {
        threw("something unknown");
    }
    return kUnhandledMsgErr;
}

void Plugin::unmap() {
    if (!module_) {
        return;
    }
    const Core::LoadScope unloading(core_, *this);
    entry_ = nullptr;
    if (!module_->unmap()) {
        misbehaves("stays in memory after it was unloaded");
    }
    module_.reset();
}

void Plugin::misbehaves(const std::string& what) {
    core_.ledger().report(name_, what);
}

} // namespace host
