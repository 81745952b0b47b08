// SPDX-License-Identifier: MIT
// Rendering of failures.
#include "misc/exception.h"

#include "misc/text/numbers.h"

namespace Orvil {

Exception::Exception(const std::string& message, const std::string& file, std::uint32_t line,
                     const std::string& code)
    : Exception(message, file, line, code, false) {}

Exception::Exception(const std::string& message, const std::string& file, std::uint32_t line,
                     const std::string& code, bool /*flag*/)
    : message_(message), file_(file), code_(code), line_(line) {
    debugHandling();
}

Exception& Exception::operator=(const Exception& other) {
    if (this == &other) {
        return *this;
    }
    message_ = other.message_;
    file_ = other.file_;
    line_ = other.line_;
    code_ = other.code_;
    return *this;
}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
    if (what_.empty()) {
        try {
            what_ = description();
        } catch (...) {
            // No memory for the whole text, and nothing may be thrown from here: the message
            // alone is better than nothing.
            return message_.c_str();
        }
    }
    return what_.c_str();
}

std::string Exception::description() const {
    return descriptionHeader() + descriptionMessage() + descriptionCode();
}

std::string Exception::exceptionName() const {
    return "Exception";
}

std::string Exception::descriptionHeader() const {
    return exceptionName() + " in file " + (file_.empty() ? "<unknown>" : "'" + file_ + "'") +
           " at line " + (line_ == unknownLine ? "<unknown>" : toString(line_, 0, 6));
}

std::string Exception::descriptionMessage() const {
    return message_.empty() ? std::string() : "\n    User Message : " + message_;
}

std::string Exception::descriptionCode() const {
    if (code_.empty()) {
        return {};
    }
    return "\n---vvv----- CODE SNIPPET -----vvv---\n" + code_ +
           "\n---^^^--- END CODE SNIPPET ---^^^---";
}

void Exception::assertionFailed(const std::string& expression, const std::string& message,
                                const std::string& file, std::uint32_t line) {
    const Exception failure(message, file, line, expression);
    failure.debugHandling();
    std::terminate();
}

SerializationException::SerializationException(const std::string& message, const std::string& file,
                                               std::uint32_t line, const std::string& code)
    : Exception(message, file, line, code, true) {}

std::string SerializationException::exceptionName() const {
    return "SerializationException";
}

} // namespace Orvil
