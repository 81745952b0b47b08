// SPDX-License-Identifier: MIT
// What many calls of the dialog manager's suites do: look a handle up, and read or write something.
#pragma once

#include "host/adm/dialogs.h"
#include "host/core/guard.h"
#include "host/core/text.h"

namespace host {

/// Does `work` with what a handle stands for; it may answer a code, else the answer is kNoErr.
template <typename Handle, typename Work>
SPErr with(Dialogs& dialogs, Handle handle, Work work) {
    auto* const object = dialogs.find(handle);
    if (object == nullptr) {
        return kBadParameterErr;
    }
    if constexpr (std::is_same_v<decltype(work(*object)), SPErr>) {
        return work(*object);
    } else {
        work(*object);
        return kNoErr;
    }
}

/// Sets a member. `Value` is what crosses the suite's edge.
template <auto member, typename Handle, typename Value>
SPErr setMember(Dialogs& dialogs, Handle handle, Value value) {
    return with(dialogs, handle, [&](auto& object) { object.*member = value; });
}

/// The same, and it is to be seen.
template <auto member, typename Handle, typename Value>
SPErr changeMember(Dialogs& dialogs, Handle handle, Value value) {
    return with(dialogs, handle, [&](auto& object) {
        object.*member = static_cast<std::remove_reference_t<decltype(object.*member)>>(value);
        dialogs.changed(object);
    });
}

template <auto member, typename Handle, typename Value>
SPErr getMember(Dialogs& dialogs, Handle handle, Value* result) {
    return with(dialogs, handle, [&](auto& object) { *result = object.*member; });
}

} // namespace host
