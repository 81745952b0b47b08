// SPDX-License-Identifier: MIT
// Messages of the protocol as JSON, for people and scripts.
#pragma once

#include "protocol.h"

#include <nlohmann/json.hpp>

#include <string>

namespace ProtocolTool {

using Json = nlohmann::ordered_json;

/// A request as a document of the protocol. `request` is an object:
///   {"request": "font" | "show" | "buy" | "activation",
///    "mustMatchFontType": bool, "targetApp": text, "targetClass": text,
///    "fonts": [{"syncID": text, "psName": text, "type": text, "familyName": text,
///               "styleName": text, "containerID": text}, ...]}
/// Everything but "request" may be left out; a buy request has exactly one font. Throws
/// std::invalid_argument for anything else, and what the message and the codec throw.
[[nodiscard]] std::string encodeRequest(const Json& request);

/// A parsed reply as an object: "reply" tells its kind as above, the rest its members.
[[nodiscard]] Json describeReply(const Protocol::ReplyContainer& reply);

} // namespace ProtocolTool
