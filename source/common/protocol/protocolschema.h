// SPDX-License-Identifier: MIT
// The project's own schema of the protocol's documents (source/resources), as a text.
#pragma once

namespace Protocol {

/// Zero-terminated; for the constructor of Protocol::Handler.
extern const char* const schemaText;

} // namespace Protocol
