// SPDX-License-Identifier: MIT
// Reading faults, and building them into the host.
#include "host/cli/sabotage.h"

#include "host/core/callsite.h"
#include "host/core/text.h"

#include <charconv>
#include <cstdint>
#include <optional>

namespace host {

namespace {

struct Fault {
    bool missingSuite = false;
    std::string_view suite; ///< of a failing call: may be empty
    std::int32_t version = 0;
    std::string_view call;
    SPErr error = kBadParameterErr;
    std::uint64_t from = 1;
};

template <typename Number>
bool readNumber(std::string_view text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

/// Splits off the part before `sign`; the rest is empty when there is none.
std::string_view takePart(std::string_view& text, char sign) {
    const std::size_t end = text.find(sign);
    const std::string_view part = text.substr(0, end);
    text = end == std::string_view::npos ? "" : text.substr(end + 1);
    return part;
}

std::optional<Fault> readFault(std::string_view text) {
    Fault fault;
    const std::string_view kind = takePart(text, '=');
    if (kind == "missing-suite") {
        fault.missingSuite = true;
        fault.suite = takePart(text, ':');
        return !fault.suite.empty() && readNumber(text, fault.version) ? std::optional(fault)
                                                                       : std::nullopt;
    }
    if (kind != "failing-call") {
        return std::nullopt;
    }
    fault.call = takePart(text, ':');
    if (const std::size_t slash = fault.call.find('/'); slash != std::string_view::npos) {
        fault.suite = fault.call.substr(0, slash);
        fault.call = fault.call.substr(slash + 1);
    }
    const std::string_view error = takePart(text, ':');
    const bool readable = !fault.call.empty() && (error.empty() || readError(error, fault.error)) &&
                          (text.empty() || readNumber(text, fault.from));
    return readable && fault.error != kNoErr ? std::optional(fault) : std::nullopt;
}

} // namespace

std::string checkSabotage(std::string_view fault) {
    if (readFault(fault)) {
        return {};
    }
    return std::string(fault).append(" is neither missing-suite=NAME:VERSION nor "
                                     "failing-call=[SUITE/]CALL[:ERROR[:FROM]]");
}

std::string applySabotage(Core& core, std::string_view text) {
    const std::optional<Fault> fault = readFault(text);
    if (!fault) {
        return checkSabotage(text);
    }
    if (fault->missingSuite) {
        return core.suites().hide(fault->suite, fault->version)
                   ? ""
                   : "there is no suite " + std::string(text.substr(text.find('=') + 1));
    }
    CallSite* const site = CallSite::find(fault->suite, fault->call);
    if (site == nullptr) {
        return "no suite has a call " + std::string(fault->call);
    }
    site->failWith(fault->error, fault->from);
    return {};
}

} // namespace host
