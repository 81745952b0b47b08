// SPDX-License-Identifier: MIT
// What a reply tells of one font.
#pragma once

#include "manager/exchange/activationbatch.h"
#include "manager/exchange/candidates.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/replytext.h"

#include <vector>

namespace manager {

/// What was found of a font asked for: in the library, and on the desktop beside it.
struct Found {
    Finding held;
    std::vector<DesktopFace> shown;
};

/// What the font asked for is called, and how many containers hold it.
void writeNames(ReplyText& reply, const CommandFont& asked, const Finding& held);

/// The whole font of the reply to a font request; `batch` is what the request activated.
void writeFontRequestFont(ReplyText& reply, const CommandFont& asked, const Found& found,
                          const ActivationBatch& batch);

} // namespace manager
