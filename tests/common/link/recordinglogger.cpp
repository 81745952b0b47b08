// SPDX-License-Identifier: MIT
// Stands in this program for the sink of the plug-in's trace.
#include "recordinglogger.h"

#include "Logger.h"

#include <utility>

int Logger::level = 0;
bool Logger::initialized = false;
std::string Logger::filename;

namespace {

std::vector<std::string> trace;

} // namespace

void Logger::log(const std::string& text, const std::string& context, int /*level*/) {
    trace.push_back(context + ": " + text);
}

std::vector<std::string> takeTrace() {
    return std::exchange(trace, {});
}
