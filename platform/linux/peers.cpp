// SPDX-License-Identifier: MIT
// Looking applications up on the bus. A name with a process id is checked against the id that the
// bus itself has from the kernel, so that nobody can pass for another process.
#include "peers.h"

#include "eventinbox.h"

#include <unistd.h>

#include <algorithm>

namespace platform {

namespace {

bool isThisProcess(const InstanceName& instance) {
    EventInbox& inbox = EventInbox::instance();
    return instance.processID == getpid() && inbox.isOpen() &&
           inbox.signature() == instance.signature;
}

Peer firstTruthful(const BusConnection& connection, auto isWanted) {
    for (const InstanceName& instance : listInstances(connection)) {
        if (isWanted(instance) && isTruthful(connection, instance)) {
            return {busNameOf(instance), instance.processID == getpid()};
        }
    }
    return {};
}

} // namespace

std::vector<InstanceName> listInstances(const BusConnection& connection) {
    ErrorSlot error;
    const VariantHandle reply = connection.callBus("ListNames", nullptr, "(as)", error);
    std::vector<InstanceName> instances;
    if (!reply) {
        return instances;
    }
    GVariantIter* names = nullptr;
    g_variant_get(reply.get(), "(as)", &names);
    const std::unique_ptr<GVariantIter, Releaser<g_variant_iter_free>> owned(names);
    const char* name = nullptr;
    while (g_variant_iter_next(names, "&s", &name) != 0) {
        if (const auto instance = parseInstanceName(name)) {
            instances.push_back(*instance);
        }
    }
    std::sort(instances.begin(), instances.end());
    return instances;
}

bool isTruthful(const BusConnection& connection, const InstanceName& instance) {
    if (isThisProcess(instance)) {
        return true;
    }
    ErrorSlot error;
    const VariantHandle reply =
        connection.callBus("GetConnectionUnixProcessID",
                           g_variant_new("(s)", busNameOf(instance).c_str()), "(u)", error);
    if (!reply) {
        return false;
    }
    std::uint32_t processID = 0;
    g_variant_get(reply.get(), "(u)", &processID);
    return processID == static_cast<std::uint32_t>(instance.processID);
}

Peer findBySignature(const BusConnection& connection, OSType signature) {
    std::string name = busNameOf(signature);
    ErrorSlot error;
    const VariantHandle reply =
        connection.callBus("GetNameOwner", g_variant_new("(s)", name.c_str()), "(s)", error);
    if (reply) {
        const char* owner = nullptr;
        g_variant_get(reply.get(), "(&s)", &owner);
        return {std::move(name), connection.uniqueName() == owner};
    }
    return firstTruthful(connection, [signature](const InstanceName& instance) {
        return instance.signature == signature;
    });
}

Peer findByProcessID(const BusConnection& connection, std::int32_t processID) {
    return firstTruthful(connection, [processID](const InstanceName& instance) {
        return instance.processID == processID;
    });
}

} // namespace platform
