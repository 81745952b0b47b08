// SPDX-License-Identifier: MIT
// Log lines and hex dumps on standard error.
#include "misc/logger.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <locale>

namespace Orvil {

namespace {

std::string hex(unsigned value, int width) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%0*x", width, value);
    return digits.data();
}

} // namespace

Logger::Logger(const std::string& name, bool flag) : name_(name), flag_(flag) {}

Logger::~Logger() = default;

bool Logger::isVisible(int /*level*/) const {
    return true;
}

void Logger::setLogLevel(int /*level*/) {}

void Logger::flush() {}

void Logger::log(int /*level*/, std::string_view context, std::string_view text) {
    std::cerr << context << ": " << text << std::endl;
}

void Logger::hexdump(int level, const void* data, unsigned size, unsigned bytesPerLine) {
    if (bytesPerLine == 0) {
        return;
    }
    const auto* bytes = static_cast<const unsigned char*>(data);
    unsigned counter = 0;
    unsigned consumed = 0;
    while (consumed < size) {
        std::string row = hex(counter, 6) + "  ";
        std::string characters;
        for (unsigned column = 0; column < bytesPerLine; ++column) {
            if (column % 4 == 0) {
                row += "  ";
            }
            if (consumed < size) {
                const unsigned char byte = bytes[consumed];
                row += ' ';
                row += hex(byte, 2);
                const auto character = static_cast<char>(byte);
                characters += std::isprint(character, std::locale()) ? character : '.';
                ++consumed;
                ++counter;
            } else {
                // The first cell after the data marks its end; the counter is not needed any more.
                row += counter != 0 ? "__ " : "   ";
                characters += ' ';
                counter = 0;
            }
        }
        row += "     ";
        row += characters;
        log(level, "hex", row);
    }
}

const std::string& Logger::getDateTime() {
    static std::string text;
    const std::time_t now = std::time(nullptr);
    std::array<char, 64> buffer{};
    text = ctime_r(&now, buffer.data()) != nullptr ? buffer.data() : "";
    text = text.substr(0, text.rfind('\n'));
    return text;
}

Logger& globalLogger() {
    static Logger logger("global", true);
    return logger;
}

} // namespace Orvil
