// SPDX-License-Identifier: MIT
#include "faces/remark.h"

namespace faces {

namespace {

// A name may hold such a mark itself.
void addFilled(std::string& line, std::string_view text, const Remark& remark) {
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t mark = text.find('%', begin);
        line.append(text.substr(begin, mark - begin));
        if (mark == std::string_view::npos) {
            return;
        }
        line.append(text.substr(mark, 2) == "%1" ? remark.first : remark.second);
        begin = mark + 2;
    }
}

} // namespace

std::string lineOf(std::span<const Remark> remarks, std::string (*translated)(const char*)) {
    std::string line;
    const Remark* before = nullptr;
    for (const Remark& remark : remarks) {
        if (before != nullptr) {
            line.append(before->isExplained ? ": " : ", ");
        }
        addFilled(line, translated != nullptr ? translated(remark.text) : remark.text, remark);
        before = &remark;
    }
    return line;
}

} // namespace faces
