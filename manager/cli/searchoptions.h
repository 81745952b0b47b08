// SPDX-License-Identifier: MIT
// What a search can be narrowed by on the command line.
#pragma once

#include "manager/library/facequery.h"

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

private:
    FaceQuery query_;
    std::vector<std::string> words_;
    bool monospaced_ = false;
    bool variable_ = false;
    bool colour_ = false;
    bool embeddable_ = false;
};

} // namespace manager
