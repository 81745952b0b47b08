// SPDX-License-Identifier: MIT
// What a test wants to know of a failure.
#pragma once

#include "misc/exception.h"

#include <string>

/// The message of the Exception that the action throws.
template <typename Action>
std::string messageOf(Action action) {
    try {
        action();
    } catch (const Orvil::Exception& failure) {
        return failure.message();
    }
    return "nothing thrown";
}
