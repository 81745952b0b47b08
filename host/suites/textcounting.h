// SPDX-License-Identifier: MIT
// Counting references: the two calls that every suite of the text engine begins with.
#pragma once

#include "host/suites/textengine.h"

namespace host {

template <typename Ref>
SPErr addTextRef(TextEngine& engine, Ref ref) {
    return engine.addRef(ref) ? kNoErr : kBadParameterErr;
}

template <typename Ref>
SPErr releaseTextRef(TextEngine& engine, Ref ref) {
    return engine.release(ref) ? kNoErr : kBadParameterErr;
}

} // namespace host
