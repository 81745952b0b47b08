// SPDX-License-Identifier: MIT
// The commands that look at faces: search, info, duplicates.
#pragma once

#include "manager/library/facequery.h"
#include "manager/library/library.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace manager {

/// Everything of a face, for programs. `state`: whether it is active.
[[nodiscard]] nlohmann::ordered_json toJson(const FaceDetails& details, const char* state);

/// Each returns an ExitStatus and throws Error.
/// `similar`: the name of the face that those found are to look like.
int searchCommand(const Places& places, FaceQuery query, const std::optional<std::string>& similar,
                  bool json);
int infoCommand(const Places& places, const std::vector<std::string>& names, bool json);
int duplicatesCommand(const Places& places, bool json);

} // namespace manager
