// SPDX-License-Identifier: MIT
// Fonts and failures that the protocol's tests share.
#pragma once

#include "misc/exception.h"
#include "protocol.h"

#include <functional>
#include <string>

/// A font that every rule accepts.
inline Protocol::Font soundFont(const std::string& syncID = "id") {
    Protocol::Font font;
    font.syncID = syncID;
    font.type = Protocol::Font::TT;
    font.psName = "Oswald-Bold";
    font.fontInfos = {{"12", "Oswald (2 files)"}};
    return font;
}

/// A font without a default in any field.
inline Protocol::Font fullFont() {
    return {.syncID = "s\"&\n",
            .type = Protocol::Font::OT_TT,
            .psName = "A&B<]]>",
            .styleName = " \xf0\x9f\x98\x80\r",
            .familyName = "\xc3\x84",
            .count = 4294967295,
            .isActive = true,
            .typeMatchingCount = 3,
            .isTypeMatchingActive = true,
            .typeMatchingContainerID = "5",
            .fontInfos = {{"1", "one"}, {"2", ""}},
            .handled = true,
            .containerID = "9",
            .activationSuccessful = true};
}

/// The description of the Orvil::Exception that `action` throws; "" when it throws none.
inline std::string failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Orvil::Exception& exception) {
        return exception.description();
    }
    return {};
}

/// How a failure of the protocol describes itself.
inline std::string protocolFailure(const std::string& message, int line) {
    return "Exception in file 'source/common/protocol' at line " + std::to_string(line) +
           "\n    User Message : " + message;
}
