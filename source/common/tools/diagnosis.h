// SPDX-License-Identifier: MIT
// Where and why a protocol document is wrong.
#pragma once

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
/// is. At most `maximumComplaints`. Throws std::runtime_error when the schema does not compile.
std::vector<Complaint> diagnose(const std::string& xml, const std::string& schema);

constexpr std::size_t maximumComplaints = 20;

} // namespace ProtocolTool
