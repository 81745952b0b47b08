// SPDX-License-Identifier: MIT
// Which fonts replace which, as a table that people keep by hand.
#pragma once

#include "host/documents/face.h"

#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// what() is one line that names the place.
class TableError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Lines "old = new"; empty ones and those that begin with "#" do not count. The old name is a
/// family, a family with a style, or a PostScript name, without regard to case and blanks; in it
/// "*" stands for any characters and "?" for one.
class ReplacementTable {
public:
    struct Rule {
        std::string place; ///< for messages: "FILE:LINE"
        std::string old;   ///< as it is written
        std::string name;  ///< the new one
    };

    /// Adds one line of a table. Throws TableError.
    void add(std::string_view line, std::string place);
    /// Adds a whole table; `name` is for messages. Throws TableError.
    void read(std::istream& table, const std::string& name);

    [[nodiscard]] bool empty() const { return rules_.empty(); }
    /// The first rule that is about the face; nullptr: none is.
    [[nodiscard]] const Rule* ruleFor(const Face& face) const;

private:
    struct Entry {
        Rule rule;
        std::string pattern; ///< of names' keys
    };
    std::vector<Entry> rules_;
};

} // namespace host
