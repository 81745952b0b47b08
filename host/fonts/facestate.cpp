// SPDX-License-Identifier: MIT
#include "host/fonts/facestate.h"

#include <array>
#include <cstddef>

namespace host {

const char* textOf(FaceState state) noexcept {
    static constexpr std::array<const char*, 6> texts{"installed", "generic",       "embedded",
                                                      "missing",   "activated now", "replaced"};
    return texts[static_cast<std::size_t>(state)];
}

FaceState stateOf(const FontEntry& entry) noexcept {
    if (entry.origin == FaceOrigin::Generic) {
        return FaceState::Generic;
    }
    if (entry.origin == FaceOrigin::Embedded) {
        return FaceState::Embedded;
    }
    return entry.present ? FaceState::Installed : FaceState::Missing;
}

} // namespace host
