// SPDX-License-Identifier: MIT
// The plug-in's trace of its work: a sink that discards everything, called where a real one can be
// attached later. Not the library's Orvil::Logger.
#pragma once

#include <string>

/// Threads: the main thread. Throws: nothing.
class Logger {
public:
    /// Accepts a message and does nothing with it. The strings are the text and where it arose.
    static void log(const std::string& text, const std::string& context, int level);

    static int level;
    static bool initialized;
    static std::string filename;
};
