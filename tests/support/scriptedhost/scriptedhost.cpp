// SPDX-License-Identifier: MIT
// The scripted host itself: messages, faults, the registry of suites, the document, the texts;
// alerts, dialogs and the locale.
#include "tests/support/scriptedhost/scriptedhost.h"

#include "suitelist.h"
#include "suitepointers.h"

#include <algorithm>
#include <cstring>

AIArt& AIArt::addGroup() {
    return addOther(kGroupArt);
}

AIArt& AIArt::addText(std::vector<std::vector<AIFontKey>> textRuns) {
    AIArt& art = addOther(kTextFrameArt);
    art.runs = std::move(textRuns);
    return art;
}

AIArt& AIArt::addOther(std::int16_t otherType) {
    AIArt& art = *children.emplace_back(std::make_unique<AIArt>());
    art.type = otherType;
    art.parent = this;
    return art;
}

namespace scripted {

namespace {

Host* currentHost = nullptr;

/// The table of a suite of that type; what nothing is called of has one without calls.
template <typename Suite>
const void* tableOf() {
    static const char withoutCalls = 0;
    return &withoutCalls;
}

#define SCRIPTED_TABLE(type, table)                                                                \
    template <>                                                                                    \
    const void* tableOf<type>() {                                                                  \
        return &(table);                                                                           \
    }
GLYPHORA_SCRIPTED_TABLES(SCRIPTED_TABLE)
#undef SCRIPTED_TABLE

} // namespace

const void* findSuite(std::string_view name, std::int32_t version) {
#define SCRIPTED_ROW(type, pointer, suiteName, suiteVersion)                                       \
    if (name == (suiteName) && version == (suiteVersion)) {                                        \
        return tableOf<type>();                                                                    \
    }
    GLYPHORA_BASIC_SUITES(SCRIPTED_ROW)
    GLYPHORA_IMPORT_SUITES(SCRIPTED_ROW)
    SCRIPTED_ROW(ADMBasicSuite, unused, "ADM Basic Suite", 2)
#undef SCRIPTED_ROW
    return nullptr;
}

Host::Host(SPEntryProc entryPoint) : entry(entryPoint) {
    currentHost = this;
}

Host::~Host() {
    currentHost = nullptr;
}

Host& Host::current() {
    return *currentHost;
}

const SPBasicSuite* Host::basic() const {
    return &basicTable;
}

SPErr Host::send(const char* caller, const char* selector) {
    auto record = message<SPInterfaceMessage>();
    const SPErr error = entry(caller, selector, &record);
    globals = record.d.globals;
    return error;
}

SPErr Host::notify(AINotifier* notifier, const char* type, const char* selector) {
    auto record = message<AINotifierMessage>();
    record.notifier = notifier;
    record.type = type;
    const SPErr error = entry("AI Notifier", selector, &record);
    globals = record.d.globals;
    return error;
}

void Host::fail(const std::string& name, AIErr error, int nth) {
    faults_[name] = Fault{error, nth, 0};
}

AIErr Host::enter(const char* name, bool ok) {
    calls.emplace_back(name);
    const auto found = faults_.find(std::string_view(name));
    if (found != faults_.end()) {
        Fault& fault = found->second;
        ++fault.seen;
        if (fault.error != kNoErr && (fault.nth == 0 || fault.nth == fault.seen)) {
            return fault.error;
        }
    }
    return ok ? kNoErr : kBadParameterErr;
}

int Host::callsOf(std::string_view name) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), name));
}

AINotifier& Host::notifierOf(std::string_view type, std::string_view name) {
    const auto found = std::find_if(notifiers.begin(), notifiers.end(), [&](const auto& notifier) {
        return notifier->type == type && notifier->name == name;
    });
    return **found;
}

AIArt& Host::addLayer() {
    return layers.emplace_back(std::make_unique<AILayer>())->group;
}

AIFontKey Host::addFont(AIFontFace face) {
    return fonts.emplace_back(std::make_unique<AIFontFace>(std::move(face))).get();
}

AIFontKey Host::addFont(const std::string& family, const std::string& style, bool present) {
    AIFontFace face{family + "-" + style, style, family, family + " " + style, {}};
    face.style.technology = 1;
    face.style.isPresent = present ? 1 : 0;
    return addFont(std::move(face));
}

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
