// SPDX-License-Identifier: MIT
// The library's own logger: lines on standard error, and hex dumps.
#pragma once

#include <string>
#include <string_view>

namespace Orvil {

/// Writes lines to standard error. Nothing is filtered by level.
/// [any-thread] Lines of several threads may interleave.
class Logger {
public:
    /// Higher is more severe; neighbours are 3 apart.
    // NOLINTBEGIN(readability-identifier-naming): they stand for an enumeration
    static constexpr int Error = 9;
    static constexpr int Warning = 6;
    static constexpr int Important = 3;
    static constexpr int Normal = 0;
    static constexpr int Fine = -3;
    static constexpr int Finest = -6;
    static constexpr int Debug = -9;
    // NOLINTEND(readability-identifier-naming)

    /// Both are stored and have no meaning yet.
    Logger(const std::string& name, bool flag);
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    virtual ~Logger();

    /// True for every level.
    [[nodiscard]] bool isVisible(int level) const;
    void setLogLevel(int level);
    void flush();

    /// Writes "CONTEXT: TEXT" as one line. The level neither filters nor prefixes.
    void log(int level, std::string_view context, std::string_view text);
    /// Logs `size` bytes at `data` under the context "hex", one row per `bytesPerLine` bytes.
    /// Nothing is logged when either number is 0.
    void hexdump(int level, const void* data, unsigned size, unsigned bytesPerLine);

    /// [one-thread] The current local date and time in the C library's fixed form of 24 characters.
    /// All callers share one text, which every call overwrites.
    [[nodiscard]] static const std::string& getDateTime();

private:
    std::string name_;
    bool flag_;
};

/// The library's logger, made at the first call.
Logger& globalLogger();

} // namespace Orvil
