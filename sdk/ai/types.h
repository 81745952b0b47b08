// SPDX-License-Identifier: MIT
// Handles of the document model and of what plug-ins register with the host. The host owns what
// they stand for; a handle of a part of a document is valid while that document is open.
#pragma once

#include "sp/types.h"

using AINotifierHandle = struct AINotifier*;
using AITimerHandle = struct AITimer*;
using AIMenuItemHandle = struct AIMenuItem*;
using AIMenuGroup = struct AIMenuGroupRecord*;
using AIAppContextHandle = struct AIAppContext*;
using AIDocumentHandle = struct AIDocument*;
using AILayerHandle = struct AILayer*;
using AIArtHandle = struct AIArt*;
/// One face of the host's font catalogue, or one that a document names and the host lacks.
using AIFontKey = const struct AIFontFace*;

enum AIArtType : std::int16_t {
    kUnknownArt = 0,
    kGroupArt = 1,
    kTextFrameArt = 12,
};
