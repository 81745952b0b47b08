// SPDX-License-Identifier: MIT
// The entry point: creates and destroys the plug-in's object, and hands every other message to it.
#include "PluginMain.h"

#include "Plugin.h"
#include "suitepointers.h"

#include <cstdio>
#include <memory>
#include <string_view>

namespace {

Plugin* pluginOf(const SPMessageData& data) {
    return static_cast<Plugin*>(data.globals);
}

// The globals slot owns the object; this empties it.
std::unique_ptr<Plugin> takePlugin(SPMessageData& data) {
    std::unique_ptr<Plugin> plugin(pluginOf(data));
    data.globals = nullptr;
    return plugin;
}

SPErr startUp(SPInterfaceMessage* message) {
    SPMessageData& data = message->d;
    std::unique_ptr<Plugin> created = AllocatePlugin(data.self);
    if (created == nullptr) {
        Plugin::DefaultError(data.self, kOutOfMemoryErr);
        return kOutOfMemoryErr;
    }
    Plugin* const plugin = created.release();
    data.globals = plugin;
    const SPErr error = plugin->StartupPlugin(message);
    if (error != kNoErr) {
        takePlugin(data).reset();
        Plugin::DefaultError(data.self, error);
    }
    return error;
}

SPErr shutDown(SPInterfaceMessage* message) {
    SPMessageData& data = message->d;
    if (data.globals == nullptr) {
        return kNoErr;
    }
    const SPErr error = pluginOf(data)->ShutdownPlugin(message);
    takePlugin(data).reset();
    if (error != kNoErr) {
        Plugin::DefaultError(data.self, error); // there is no object left to report it
    }
    return error;
}

SPErr dispatch(const char* caller, const char* selector, void* message) {
    const SPMessageData& data = *static_cast<SPMessageData*>(message);
    if (Plugin::IsReloadMsg(caller, selector)) {
        FixupReload(pluginOf(data)); // before the first virtual call
        return pluginOf(data)->ReloadPlugin(static_cast<SPAccessMessage*>(message));
    }
    Plugin* const plugin = pluginOf(data);
    return plugin->HasSuites() ? plugin->Message(caller, selector, message) : kNoErr;
}

} // namespace

SPErr PluginMain(const char* caller, const char* selector, void* message) {
    SPMessageData& data = *static_cast<SPMessageData*>(message);
    sSPBasic = data.basic;

    if (std::string_view(caller) == "SP Interface") {
        if (std::string_view(selector) == "Startup") {
            const SPErr error = startUp(static_cast<SPInterfaceMessage*>(message));
            if (error != kNoErr) {
                return error;
            }
        } else if (std::string_view(selector) == "Shutdown") {
            return shutDown(static_cast<SPInterfaceMessage*>(message));
        }
    }
    if (data.globals == nullptr) {
        return kNoErr;
    }

    const SPErr error = dispatch(caller, selector, message);
    if (error == kUnhandledMsgErr) {
        std::fprintf(stderr, "Warning: Unhandled plugin message: caller \"%s\" selector \"%s\"\n",
                     caller, selector);
        return kNoErr;
    }
    if (error != kNoErr) {
        pluginOf(data)->ReportError(error, caller, selector, message);
    }
    return error;
}
