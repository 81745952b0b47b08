// SPDX-License-Identifier: MIT
// What a reply tells of one font.
#pragma once

#include "manager/exchange/activationbatch.h"
#include "manager/exchange/candidates.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/findings.h"
#include "manager/exchange/replytext.h"

namespace manager {

/// What the font asked for is called, and how many containers hold it.
void writeNames(ReplyText& reply, const CommandFont& asked, const Finding& held);

/// The whole font of the reply to a font request; `batch` is what the request activated.
void writeFontRequestFont(ReplyText& reply, const CommandFont& asked, const Found& found,
                          const ActivationBatch& batch);

} // namespace manager
