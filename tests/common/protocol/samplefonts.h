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
    Protocol::Font font;
    font.syncID = "s\"&\n";
    font.type = Protocol::Font::OT_TT;
    font.psName = "A&B<]]>";
    font.styleName = " \xf0\x9f\x98\x80\r";
    font.familyName = "\xc3\x84";
    font.count = 4294967295;
    font.isActive = true;
    font.typeMatchingCount = 3;
    font.isTypeMatchingActive = true;
    font.typeMatchingContainerID = "5";
    font.fontInfos = {{"1", "one"}, {"2", ""}};
    font.handled = true;
    font.containerID = "9";
    font.activationSuccessful = true;
    return font;
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
