// SPDX-License-Identifier: MIT
// Walking the registered applications, see processes.h.
#include "platform/processes.h"

#include "eventinbox.h"
#include "peers.h"
#include "wire.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <mutex>
#include <vector>

using platform::BusConnection;
using platform::InstanceName;

namespace {

constexpr std::size_t nameSize = 256;
/// A process that is stopped must not hold up one that only wants its name.
constexpr int nameTimeoutMilliseconds = 500;

/// A serial number is the signature and the process id.
InstanceName instanceOf(const ProcessSerialNumber& psn) {
    return {psn.highLongOfPSN, static_cast<std::int32_t>(psn.lowLongOfPSN)};
}

/// The bus' list as of the last walk that began; shared by all walks of this process, since a newer
/// list serves an older walk as well.
class Walk {
public:
    static Walk& instance() {
        static platform::Immortal<Walk> walk;
        return *walk;
    }
    void begin(std::vector<InstanceName> instances) {
        const std::scoped_lock lock(mutex_);
        instances_ = std::move(instances);
    }
    /// Those after `last`.
    std::vector<InstanceName> after(const InstanceName& last) {
        const std::scoped_lock lock(mutex_);
        return {std::upper_bound(instances_.begin(), instances_.end(), last), instances_.end()};
    }

private:
    std::mutex mutex_;
    std::vector<InstanceName> instances_;
};

std::string kernelNameOf(std::int32_t processID) {
    std::ifstream file("/proc/" + std::to_string(processID) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

/// As the process told it at its registration, else as the kernel calls it.
std::string nameOf(const BusConnection& connection, const InstanceName& instance) {
    if (instance.processID == getpid()) {
        std::string own = platform::EventInbox::instance().name();
        return own.empty() ? kernelNameOf(instance.processID) : own;
    }
    platform::ErrorSlot error;
    const platform::VariantHandle reply(g_dbus_connection_call_sync(
        connection.get(), platform::busNameOf(instance).c_str(), platform::eventPath,
        "org.freedesktop.DBus.Properties", "Get",
        g_variant_new("(ss)", platform::eventInterface, platform::nameProperty),
        G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, nameTimeoutMilliseconds, nullptr,
        error.out()));
    std::string name;
    if (reply) {
        GVariant* value = nullptr;
        g_variant_get(reply.get(), "(v)", &value);
        const platform::VariantHandle owned(value);
        if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING) != 0) {
            name = g_variant_get_string(value, nullptr);
        }
    }
    return name.empty() ? kernelNameOf(instance.processID) : name;
}

/// Cut between characters when it is too long.
void tellName(std::string name, char* buffer) {
    if (name.size() >= nameSize) {
        const char* end = g_utf8_find_prev_char(name.c_str(), name.c_str() + nameSize);
        name.resize(end != nullptr ? static_cast<std::size_t>(end - name.c_str()) : 0);
    }
    std::memcpy(buffer, name.c_str(), name.size() + 1);
}

} // namespace

OSErr GetNextProcess(ProcessSerialNumber* psn) {
    if (psn == nullptr) {
        return paramErr;
    }
    const InstanceName last = instanceOf(*psn);
    *psn = {};
    const auto connection = platform::SessionBus::instance().connect();
    if (!connection) {
        return procNotFound;
    }
    if (last.processID == std::int32_t{kNoProcess}) {
        Walk::instance().begin(platform::listInstances(*connection));
    }
    for (const InstanceName& next : Walk::instance().after(last)) {
        if (platform::isTruthful(*connection, next)) {
            *psn = {next.signature, static_cast<std::uint32_t>(next.processID)};
            return noErr;
        }
    }
    return procNotFound;
}

OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info) {
    if (psn == nullptr || info == nullptr ||
        (info->processInfoLength != 0 && info->processInfoLength != sizeof(ProcessInfoRec))) {
        return paramErr;
    }
    const InstanceName instance = instanceOf(*psn);
    if (instance.processID <= 0) {
        return procNotFound;
    }
    const auto connection = platform::SessionBus::instance().connect();
    if (!connection || !platform::isTruthful(*connection, instance)) {
        return procNotFound;
    }
    info->processInfoLength = sizeof(ProcessInfoRec);
    info->processNumber = *psn;
    info->processType = FourCharCode("APPL");
    info->processSignature = instance.signature;
    info->processID = instance.processID;
    if (info->processName != nullptr) {
        tellName(nameOf(*connection, instance), info->processName);
    }
    return noErr;
}
