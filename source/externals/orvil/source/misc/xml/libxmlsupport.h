// SPDX-License-Identifier: MIT
// What the sources over libxml2 share: their failures, and silence on standard error.
#pragma once

#include "misc/exception.h"

#include <libxml/xmlerror.h>

#include <cstdint>
#include <string>

namespace Orvil::LibXml {

/// The failure of all XML sources; none has a code snippet.
inline Exception failure(const std::string& message, std::uint32_t line) {
    return {message, "source/externals/orvil/source/misc/xml/libxmlparser", line, ""};
}

/// While it lives, libxml2 prints nothing on this thread; its last error is kept all the same.
/// The handler that stood before (the host's, perhaps) is put back.
class Silence {
public:
    Silence() noexcept : handler_(xmlGenericError), context_(xmlGenericErrorContext) {
        xmlSetGenericErrorFunc(nullptr, discard);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() { xmlSetGenericErrorFunc(context_, handler_); }

private:
    static void discard(void* /*context*/, const char* /*format*/, ...) {}

    xmlGenericErrorFunc handler_;
    void* context_;
};

} // namespace Orvil::LibXml
