// SPDX-License-Identifier: MIT
// Telling the user of an error: which codes stay quiet, which message belongs to a code, and how
// often the same one is shown.
#include "Plugin.h"

#include "suitepointers.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr std::int32_t errorStrings = 16050;
constexpr std::int32_t codeEntrySize = 10;
constexpr std::int32_t messageSize = 128;
/// Messages of this length or more are shown as they stand.
constexpr std::size_t formattedMessageLimit = 120;
/// Greater codes are four characters.
constexpr AIErr greatestNumericCode = 16384;

constexpr std::array quietErrors{
    FourChars("FMT?"), FourChars("RFSE"), FourChars("AFTR"), FourChars("VALD"),
    FourChars("MOOT"), FourChars("TRSH"), FourChars("CHEK"), FourChars("CHIT"),
    FourChars("TLTK"), FourChars("pFls"), FourChars("S!Fd"), FourChars("!Acq"),
    FourChars("dsRP"), FourChars("skpE"), FourChars("DONE"), FourChars("STOP"),
};

/// The ADM Basic suite: the plug-in's own, or acquired just for this report.
class AlertSuite {
public:
    AlertSuite() noexcept {
        const void* suite = nullptr;
        if (sADMBasic == nullptr && sSPBasic != nullptr &&
            sSPBasic->AcquireSuite(suiteName, suiteVersion, &suite) == kNoErr) {
            sADMBasic = static_cast<const ADMBasicSuite*>(suite);
            borrowed_ = true;
        }
    }
    AlertSuite(const AlertSuite&) = delete;
    AlertSuite& operator=(const AlertSuite&) = delete;
    ~AlertSuite() {
        if (borrowed_) {
            sSPBasic->ReleaseSuite(suiteName, suiteVersion);
            sADMBasic = nullptr;
        }
    }
    explicit operator bool() const noexcept { return sADMBasic != nullptr; }

private:
    static constexpr const char* suiteName = "ADM Basic Suite";
    static constexpr std::int32_t suiteVersion = 2;

    bool borrowed_ = false;
};

bool readEntry(SPPluginRef pluginRef, std::int32_t index, char* buffer, std::int32_t length) {
    std::fill_n(buffer, length, '\0');
    return sADMBasic->GetIndexString(pluginRef, errorStrings, index, buffer, length) == kNoErr &&
           buffer[0] != '\0';
}

// `entry` holds at least four bytes, the unused ones zero.
AIErr codeOfEntry(const char* entry) {
    if (entry[0] == '-' || (entry[0] >= '0' && entry[0] <= '9')) {
        return static_cast<AIErr>(std::strtol(entry, nullptr, 10));
    }
    char code[5] = {};
    std::memcpy(code, entry, 4);
    return FourChars(code);
}

// An alert is UTF-8: what is no printable character is shown as a question mark.
std::string textOfCode(AIErr error) {
    if (error <= greatestNumericCode) {
        return std::to_string(error);
    }
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const std::uint32_t byte = (static_cast<std::uint32_t>(error) >> shift) & 0xFFU;
        if (byte == 0) {
            break; // a C text ends here
        }
        text.push_back(byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '?');
    }
    return text;
}

// Messages are written by whoever edits the list: "%s" takes the argument (once), "%%" is a per
// cent sign, and anything else stands for itself.
std::string formatMessage(std::string_view message, std::string_view argument) {
    std::string text;
    bool used = false;
    for (std::size_t i = 0; i < message.size(); ++i) {
        const std::string_view two = message.substr(i, 2);
        if (two == "%%") {
            text += '%';
            ++i;
        } else if (two == "%s" && !used) {
            text += argument;
            used = true;
            ++i;
        } else {
            text += message[i];
        }
    }
    return text;
}

} // namespace

bool Plugin::FilterError(AIErr error) noexcept {
    return std::find(quietErrors.begin(), quietErrors.end(), error) != quietErrors.end();
}

bool Plugin::FindMsg(SPPluginRef pluginRef, AIErr error, char* buffer, std::int32_t length) {
    if (length <= 0) {
        return false;
    }
    // Odd entries hold codes, each before its message; the last message of all is the catch-all.
    std::array<char, codeEntrySize> code{};
    std::int32_t index = 1;
    std::int32_t messageIndex = 0;
    while (readEntry(pluginRef, index, code.data(), codeEntrySize)) {
        messageIndex = index + 1;
        if (codeOfEntry(code.data()) == error) {
            break;
        }
        index += 2;
    }
    if (messageIndex != 0 && readEntry(pluginRef, messageIndex, buffer, length)) {
        return true;
    }
    buffer[0] = '\0';
    return false;
}

void Plugin::DefaultError(SPPluginRef pluginRef, AIErr error) {
    if (FilterError(error)) {
        return;
    }
    const AlertSuite suite;
    std::array<char, messageSize> buffer{};
    if (!suite || !FindMsg(pluginRef, error, buffer.data(), messageSize)) {
        return;
    }
    const std::string_view message(buffer.data(), strnlen(buffer.data(), buffer.size()));
    const std::string text = message.size() < formattedMessageLimit
                                 ? formatMessage(message, textOfCode(error))
                                 : std::string(message);
    sADMBasic->ErrorAlert(text.c_str());
}

void Plugin::ReportError(AIErr error, const char* /*caller*/, const char* /*selector*/,
                         void* /*message*/) {
    if (FilterError(error)) {
        return;
    }
    const std::time_t now = clock();
    if (state_.suppressRepeatedErrors && error == state_.lastError &&
        now < state_.lastErrorTime + state_.errorRepeatInterval) {
        return;
    }
    state_.lastErrorTime = now;
    state_.lastError = error;
    DefaultError(state_.pluginRef, error);
}
