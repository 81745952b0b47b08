// SPDX-License-Identifier: MIT
// What a search can be narrowed by on the command line.
#pragma once

#include "manager/library/facequery.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace manager {

/// The values that the options of `search` fill.
class SearchOptions {
public:
    /// To outlive `command`.
    void addTo(CLI::App& command);
    [[nodiscard]] FaceQuery query() const;
    /// The name of the face that the faces are to look like.
    [[nodiscard]] const std::optional<std::string>& similar() const { return similar_; }

private:
    FaceQuery query_;
    std::vector<std::string> words_;
    std::optional<std::string> similar_;
    bool monospaced_ = false;
    bool variable_ = false;
    bool colour_ = false;
    bool embeddable_ = false;
};

} // namespace manager
