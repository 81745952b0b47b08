// SPDX-License-Identifier: MIT
// Alerts, dialogs, texts and the locale of the scripted host.
#include "tests/support/scriptedhost/scriptedhost.h"

#include <cstring>

namespace scripted {

void copyText(const std::string& text, char* buffer, std::int32_t size) {
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

const ADMBasicSuite admBasicTable = {
    .GetIndexString = [](SPPluginRef plugin, std::int32_t listID, std::int32_t index, char* buffer,
                         std::int32_t size) -> ADMErr {
        Host& host = Host::current();
        buffer[0] = '\0';
        const AIErr error = host.enter("GetIndexString", plugin == &host.plugin);
        if (error != kNoErr) {
            return error;
        }
        const auto list = host.strings.find(listID);
        if (list == host.strings.end() || !list->second.contains(index)) {
            return kNoSuchStringErr;
        }
        copyText(list->second.at(index), buffer, size);
        return kNoErr;
    },
    .AboutBox = [](SPPluginRef, const char* title,
                   const char* text) { Host::current().aboutBoxes.emplace_back(title, text); },
    .ErrorAlert = [](const char* text) { Host::current().errorAlerts.emplace_back(text); },
    .MessageAlert = [](const char* text) { Host::current().messageAlerts.emplace_back(text); },
};

const ADMHostSuite admHostTable = {
    .GetAppLocale = [](char* buffer, std::int32_t size) -> ADMErr {
        const AIErr error = Host::current().enter("GetAppLocale");
        if (error == kNoErr) {
            copyText(Host::current().locale, buffer, size);
        }
        return error;
    },
};

const ADMDialogSuite admDialogTable = [] {
    ADMDialogSuite table{};
    table.Create = [](SPPluginRef plugin, const char* name, std::int32_t layoutID,
                      std::int32_t style, ADMDialogInitProc, void*, std::int32_t options,
                      ADMDialogRef*) -> ADMErr {
        Host& host = Host::current();
        if (plugin == &host.plugin && style == kADMModalDialogStyle && options == 0) {
            host.dialogs.emplace_back(name, layoutID);
        }
        return kBadParameterErr;
    };
    return table;
}();

} // namespace scripted
