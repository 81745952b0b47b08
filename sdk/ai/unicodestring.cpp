// SPDX-License-Identifier: MIT
// The calls behind ai::UnicodeString.
#include "ai/unicodestring.h"

#include "suitepointers.h"

#include <utility>

namespace ai {

Error::Error(AIErr errorCode)
    : std::runtime_error("the host reported error " + std::to_string(errorCode)), error(errorCode) {
}

UnicodeString::UnicodeString(std::string_view utf8) {
    const AIErr result = sAIUnicodeString->CreateFromUTF8(utf8.data(), utf8.size(), &handle_);
    if (result != kNoErr) {
        throw Error(result);
    }
}

UnicodeString::UnicodeString(const UnicodeString& other) {
    if (other.handle_ != nullptr) {
        *this = UnicodeString(other.bytes());
    }
}

UnicodeString::UnicodeString(UnicodeString&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

UnicodeString& UnicodeString::operator=(UnicodeString other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
}

UnicodeString::~UnicodeString() {
    if (handle_ != nullptr) {
        sAIUnicodeString->Destroy(handle_);
    }
}

std::string UnicodeString::as_UTF8() const {
    return std::string(bytes());
}

bool UnicodeString::empty() const {
    return bytes().empty();
}

std::string_view UnicodeString::bytes() const {
    if (handle_ == nullptr) {
        return {};
    }
    const char* text = nullptr;
    std::size_t size = 0;
    const AIErr result = sAIUnicodeString->GetUTF8(handle_, &text, &size);
    if (result != kNoErr) {
        throw Error(result);
    }
    return {text, size};
}

} // namespace ai
