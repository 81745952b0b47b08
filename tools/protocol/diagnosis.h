// SPDX-License-Identifier: MIT
// Where and why a protocol document is wrong.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace ProtocolTool {

/// Lines and columns begin at 1; a column is counted in bytes and is where the reader had got to
/// when it noticed. 0: not known.
struct Complaint {
    int line = 0;
    int column = 0;
    std::string message;
};

/// What is wrong with the document by XML and by the schema (the text of one); empty when nothing
/// is. At most `maximumComplaints`. Throws BadSchema when the schema does not compile.
[[nodiscard]] std::vector<Complaint> diagnose(const std::string& xml, const std::string& schema);

struct BadSchema : std::runtime_error {
    explicit BadSchema(Complaint first);
    Complaint complaint; ///< the first that there is about the schema
};

/// Where the codec stops in a reply that is valid: at the first font that it refuses, or else
/// at the kind of reply. `message` says which font that is, or is empty.
[[nodiscard]] Complaint findRefusal(const std::string& xml);

constexpr std::size_t maximumComplaints = 20;

} // namespace ProtocolTool
