// SPDX-License-Identifier: MIT
// The numbered texts of a bundle: one file per list, "<id>.strings", that a person can edit.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

using StringList = std::unordered_map<std::int32_t, std::string>;

/// Reads lines `index = text` in UTF-8, with `#` comments, blank lines, and in the text the
/// escapes \n and \\ for a line end and a backslash. Blanks around the text do not belong to it. A
/// line in another form, a second one with the same index, or an index below 1 is left out and
/// named.
/// `problem` is called with one line "FILE:LINE: reason" for each.
StringList readStringList(std::string_view content, std::string_view file,
                          const std::function<void(std::string_view)>& problem);

/// [main-thread] The lists of one bundle, each read when it is first asked for.
class StringLists {
public:
    /// [main-thread] Told of each line that is left out, as readStringList tells it.
    using Problem = std::function<void(std::string_view)>;

    /// An empty `folder` has no lists.
    StringLists(std::filesystem::path folder, Problem problem);

    /// nullptr when there is no such list or entry.
    const std::string* find(std::int32_t list, std::int32_t index);

private:
    StringList load(std::int32_t list) const;

    std::filesystem::path folder_;
    Problem problem_;
    std::unordered_map<std::int32_t, StringList> lists_;
};

} // namespace host
