// SPDX-License-Identifier: MIT
// The plug-in's trace of its work: a sink that discards everything, so that a real one can take its
// place. Not the library's Orvil::Logger.
#pragma once

#include <string>

/// Throws nothing. [any-thread]
class Logger {
public:
    /// Takes a text and where it arose, and does nothing with them.
    static void log(const std::string& text, const std::string& context, int level);

    static int level;
    static bool initialized;
    static std::string filename;
};
