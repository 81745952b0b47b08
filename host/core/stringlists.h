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

/// Reads lines `index = text` in UTF-8; lines may be blank or begin with `#`. In the text, \n
/// stands for a line end and \\ for a backslash; blanks around it are dropped. A line in another
/// form, a repeated index or one below 1 is left out, and `problem` is called, in this thread, with
/// "FILE:LINE: reason".
[[nodiscard]] StringList readStringList(std::string_view content, std::string_view file,
                                        const std::function<void(std::string_view)>& problem);

/// [main-thread] The lists of one bundle, each read when it is first asked for.
class StringLists {
public:
    /// [main-thread] As in readStringList.
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
