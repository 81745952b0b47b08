// SPDX-License-Identifier: MIT
// The basic suite, and the suites of the plug-in manager, of contexts and of kept texts.
#include "host/core/coresuites.h"

#include "host/core/core.h"
#include "host/core/guard.h"
#include "host/core/text.h"

namespace host {

namespace {

std::string quoted(const char* name, std::int32_t version) {
    std::string text = "\"";
    return text.append(name).append("\" ").append(std::to_string(version));
}

// Basic suite

SPErr acquireSuite(Core& core, const char* name, std::int32_t version, const void** suite) {
    *suite = core.suites().acquire(name, version, core.caller());
    return *suite != nullptr ? kNoErr : kSuiteNotFoundErr;
}

SPErr releaseSuite(Core& core, const char* name, std::int32_t version) {
    switch (core.suites().release(name, version, core.caller())) {
    case SuiteRegistry::Released::Yes:
        return kNoErr;
    case SuiteRegistry::Released::NotHeld:
        core.callerMisbehaves("released " + quoted(name, version) + " without acquiring it");
        break;
    case SuiteRegistry::Released::Unknown:
        core.callerMisbehaves("released " + quoted(name, version) + ", which does not exist");
        break;
    }
    return kSuiteNotFoundErr;
}

SPErr allocateBlock(Core& core, std::size_t size, void** block) {
    *block = nullptr;
    *block = core.blocks().allocate(size, core.caller());
    return kNoErr;
}

SPErr freeBlock(Core& core, void* block) {
    if (block == nullptr || core.blocks().free(block)) {
        return kNoErr;
    }
    core.callerMisbehaves("freed a block that is not one of the host's, or not any more");
    return kBadParameterErr;
}

// "SP Access Suite", "SP Plug-ins Suite"

SPErr acquirePlugin(Core& core, SPPluginRef ref, SPAccessRef* access) {
    Plugin* const plugin = core.plugin(ref);
    if (plugin == nullptr) {
        return kBadParameterErr;
    }
    *access = core.uses().add(Core::Use{plugin, core.caller()});
    plugin->addUse();
    return kNoErr;
}

SPErr releasePlugin(Core& core, SPAccessRef access) {
    const Core::Use* const use = core.uses().find(access);
    if (use == nullptr) {
        core.callerMisbehaves("released an access reference that is not live");
        return kBadParameterErr;
    }
    use->used->dropUse();
    core.uses().remove(access);
    return kNoErr;
}

SPErr setPluginName(Core& core, SPPluginRef ref, const char* name) {
    Plugin* const plugin = core.plugin(ref);
    if (plugin == nullptr || !isUtf8(name)) {
        return kBadParameterErr;
    }
    core.rename(*plugin, name);
    return kNoErr;
}

// "AI Context Suite"

SPErr pushAppContext(Core& core, SPPluginRef ref, AIAppContextHandle* context) {
    const Plugin* const plugin = core.plugin(ref);
    if (plugin == nullptr) {
        return kBadParameterErr;
    }
    *context = core.contexts().push(plugin->number());
    return kNoErr;
}

SPErr popAppContext(Core& core, AIAppContextHandle context) {
    if (core.contexts().pop(context)) {
        return kNoErr;
    }
    core.callerMisbehaves("popped an application context that is not the innermost one");
    return kBadParameterErr;
}

// "AI Unicode String Suite"

SPErr createFromUtf8(Core& core, const char* bytes, std::size_t size, AIUnicodeStringHandle* text) {
    if (text == nullptr || (bytes == nullptr && size > 0)) {
        return kBadParameterErr;
    }
    const std::string_view source = size > 0 ? std::string_view(bytes, size) : "";
    if (!isUtf8(source)) {
        return kBadParameterErr;
    }
    *text = core.texts().add(Core::KeptText{std::string(source), core.caller()});
    return kNoErr;
}

SPErr destroyText(Core& core, AIUnicodeStringHandle text) {
    if (core.texts().remove(text)) {
        return kNoErr;
    }
    core.callerMisbehaves("destroyed a Unicode string that is not live");
    return kBadParameterErr;
}

SPErr getUtf8(Core& core, AIUnicodeStringHandle text, const char** bytes, std::size_t* size) {
    const Core::KeptText* const kept = core.texts().find(text);
    if (kept == nullptr) {
        return kBadParameterErr;
    }
    *bytes = kept->text.c_str();
    *size = kept->text.size();
    return kNoErr;
}

constexpr SPBasicSuite basicTable{
    Entry<SPBasicSuite, "AcquireSuite", acquireSuite>::call,
    Entry<SPBasicSuite, "ReleaseSuite", releaseSuite>::call,
    Entry<SPBasicSuite, "AllocateBlock", allocateBlock, Nulls::Refused, Threads::Any>::call,
    Entry<SPBasicSuite, "FreeBlock", freeBlock, Nulls::Allowed, Threads::Any>::call,
};
constexpr SPAccessSuite accessTable{
    Entry<SPAccessSuite, "AcquirePlugin", acquirePlugin>::call,
    Entry<SPAccessSuite, "ReleasePlugin", releasePlugin>::call,
};
constexpr SPPluginsSuite pluginsTable{
    Entry<SPPluginsSuite, "SetPluginName", setPluginName>::call,
};
constexpr AIAppContextSuite contextTable{
    Entry<AIAppContextSuite, "PushAppContext", pushAppContext>::call,
    Entry<AIAppContextSuite, "PopAppContext", popAppContext>::call,
};
constexpr AIUnicodeStringSuite unicodeTable{
    Entry<AIUnicodeStringSuite, "CreateFromUTF8", createFromUtf8, Nulls::Allowed>::call,
    Entry<AIUnicodeStringSuite, "Destroy", destroyText>::call,
    Entry<AIUnicodeStringSuite, "GetUTF8", getUtf8>::call,
};

} // namespace

const SPBasicSuite& Core::basicSuite() noexcept {
    return basicTable;
}

void provideCoreSuites(SuiteRegistry& suites) {
    suites.provide(accessTable);
    suites.provide(pluginsTable);
    suites.provide(contextTable);
    suites.provide(unicodeTable);
    provideRegistrationSuites(suites);
    provideDialogBasicSuites(suites);
}

} // namespace host
