// SPDX-License-Identifier: MIT
// Alerts, string lists and the locale: the part of the dialog manager that needs no dialogs.
#include "host/core/core.h"
#include "host/core/coresuites.h"
#include "host/core/guard.h"
#include "host/core/text.h"

namespace host {

namespace {

SPErr getIndexString(Core& core, SPPluginRef ref, std::int32_t list, std::int32_t index,
                     char* buffer, std::int32_t size) {
    Plugin* const plugin = core.plugin(ref);
    if (plugin == nullptr || size < 1) {
        return kBadParameterErr;
    }
    *buffer = '\0';
    const std::string* const text = plugin->strings().find(list, index);
    if (text == nullptr) {
        return kNoSuchStringErr;
    }
    copyText(*text, buffer, size);
    return kNoErr;
}

void show(Core& core, AlertKind kind, const Plugin* plugin, const char* title, const char* text) {
    core.frontend().showAlert(
        {kind, plugin != nullptr ? plugin->name() : std::string(), title, text});
}

void aboutBox(Core& core, SPPluginRef ref, const char* title, const char* text) {
    show(core, AlertKind::About, core.plugin(ref), title, text);
}

void errorAlert(Core& core, const char* text) {
    show(core, AlertKind::Error, core.plugin(core.caller()), "", text);
}

void messageAlert(Core& core, const char* text) {
    show(core, AlertKind::Message, core.plugin(core.caller()), "", text);
}

SPErr getAppLocale(Core& core, char* buffer, std::int32_t size) {
    if (size < 1) {
        return kBadParameterErr;
    }
    copyText(core.locale(), buffer, size);
    return kNoErr;
}

constexpr ADMBasicSuite basicTable{
    Entry<ADMBasicSuite, "GetIndexString", getIndexString>::call,
    Entry<ADMBasicSuite, "AboutBox", aboutBox>::call,
    Entry<ADMBasicSuite, "ErrorAlert", errorAlert>::call,
    Entry<ADMBasicSuite, "MessageAlert", messageAlert>::call,
};
constexpr ADMHostSuite hostTable{
    Entry<ADMHostSuite, "GetAppLocale", getAppLocale>::call,
};
/// The same table, for reporting an error before the plug-in has its suites.
constexpr std::int32_t earlyBasicVersion = 2;

} // namespace

void provideDialogBasicSuites(SuiteRegistry& suites) {
    suites.provide(basicTable);
    suites.provideAs(SuiteIdentity<ADMBasicSuite>::id.name, earlyBasicVersion, &basicTable);
    suites.provide(hostTable);
}

} // namespace host
