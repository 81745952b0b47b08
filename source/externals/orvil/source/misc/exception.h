// SPDX-License-Identifier: MIT
// The failures of the library and of the protocol: a message, the place that raised it and a code
// snippet, rendered into one description.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Orvil {

/// Thrown by value, caught by reference. `file` is the source file's path from the source root
/// without extension, for instance "source/externals/orvil/source/misc/threads/mutex".
/// [one-thread] what() fills a cache without a lock.
class Exception : public std::exception {
public:
    static constexpr std::uint32_t unknownLine = 0xFFFFFFFF;

    Exception(const std::string& message, const std::string& file, std::uint32_t line,
              const std::string& code);
    /// `flag` has no effect.
    Exception(const std::string& message, const std::string& file, std::uint32_t line,
              const std::string& code, bool flag);
    Exception(const Exception&) = default;
    /// Copies message, file, line and code. A text that what() has rendered before stays: the
    /// target then goes on returning its old text.
    Exception& operator=(const Exception& other);
    ~Exception() override;

    /// description(), rendered at the first call; valid as long as the object.
    const char* what() const noexcept override;
    /// Header, message and code in this order.
    [[nodiscard]] virtual std::string description() const;
    [[nodiscard]] virtual std::string exceptionName() const;

    /// The message alone, for a report that names the failure itself.
    [[nodiscard]] const std::string& message() const noexcept { return message_; }

    [[nodiscard]] std::string descriptionHeader() const;
    [[nodiscard]] std::string descriptionMessage() const;
    [[nodiscard]] std::string descriptionCode() const;

    /// Empty: a place for a debugger's break point.
    void debugHandling() const {}

    /// Ends the process through std::terminate, with the failure as a local object for the
    /// debugger. Neither throws nor prints.
    [[noreturn]] static void assertionFailed(const std::string& expression,
                                             const std::string& message, const std::string& file,
                                             std::uint32_t line);

private:
    std::string message_;
    std::string file_;
    std::string code_;
    mutable std::string what_;
    std::uint32_t line_;
};

/// A failure while protocol XML is read or written.
class SerializationException : public Exception {
public:
    SerializationException(const std::string& message, const std::string& file, std::uint32_t line,
                           const std::string& code);
    std::string exceptionName() const override;
};

} // namespace Orvil
