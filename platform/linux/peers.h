// SPDX-License-Identifier: MIT
// The registered applications of the session as the bus knows them.
#pragma once

#include "busconnection.h"
#include "busnames.h"

#include <string>
#include <vector>

namespace platform {

/// All that the bus lists, by process id and then by signature; about 100 us. Names are claims: ask
/// isTruthful before believing one. Empty without an answer.
[[nodiscard]] std::vector<InstanceName> listInstances(const BusConnection& connection);

/// True when the process that owns the name is the one that the name tells; about 100 us, nothing
/// for this process itself.
[[nodiscard]] bool isTruthful(const BusConnection& connection, const InstanceName& instance);

/// Where an event goes.
struct Peer {
    std::string busName; ///< empty: nobody
    bool isSelf = false;
};
/// The owner of the single instance, else the instance with the lowest process id.
[[nodiscard]] Peer findBySignature(const BusConnection& connection, OSType signature);
/// Whichever application the process is registered as.
[[nodiscard]] Peer findByProcessID(const BusConnection& connection, std::int32_t processID);

} // namespace platform
