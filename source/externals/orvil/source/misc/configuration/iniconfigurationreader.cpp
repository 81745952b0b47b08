// SPDX-License-Identifier: MIT
// Configurations in INI files.
#include "misc/configuration/configurationreader.h"
#include "misc/configuration/readersupport.h"

#include <fstream>
#include <string_view>
#include <utility>

namespace Orvil {

namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view lineBlanks = " \t\r";
constexpr std::string_view separators = "= \t";

std::string_view withoutEndBlanks(std::string_view text, std::string_view characters) {
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

std::string_view withoutStartBlanks(std::string_view text, std::string_view characters) {
    const auto first = text.find_first_not_of(characters);
    return first == text.npos ? std::string_view() : text.substr(first);
}

/// Makes the section that a line names, and gives the prefix of its keys.
std::string readSection(std::string_view line, Configuration& configuration) {
    std::string_view name = line.substr(1, line.size() - 2);
    name = withoutStartBlanks(withoutEndBlanks(name, blanks), blanks);
    const bool inherit = name.ends_with('+');
    if (inherit) {
        name.remove_suffix(1);
    }
    configuration.addCategory(name, inherit, true);
    return std::string(name) + ".";
}

void readKey(std::string_view line, const std::string& prefix, Configuration& configuration) {
    const auto keyEnd = std::min(line.find_first_of(separators), line.size());
    std::string_view value = withoutStartBlanks(line.substr(keyEnd), separators);
    ConfigurationReading::IndexedName key;
    if (!ConfigurationReading::splitIndex(line.substr(0, keyEnd), key) || value.empty()) {
        return;
    }
    if (value.starts_with('"')) {
        value.remove_prefix(1);
        value.remove_suffix(value.empty() ? 0 : 1);
    }
    configuration.setValueAt(prefix + std::string(key.name), key.index, std::string(value));
}

} // namespace

INIConfigurationReader::INIConfigurationReader(std::string fileName)
    : fileName_(std::move(fileName)) {}

INIConfigurationReader::INIConfigurationReader(std::istream& stream) : stream_(&stream) {}

void INIConfigurationReader::read(Configuration& configuration) {
    if (stream_ != nullptr) {
        readLines(*stream_, configuration);
        return;
    }
    std::ifstream file(fileName_, std::ios::binary);
    readLines(file, configuration);
}

void INIConfigurationReader::readLines(std::istream& stream, Configuration& configuration) {
    std::string prefix;
    std::string text;
    while (std::getline(stream, text)) {
        std::string_view line = text;
        line = withoutEndBlanks(line.substr(0, line.find(';')), lineBlanks);
        line = withoutStartBlanks(line, lineBlanks);
        if (line.empty()) {
            continue;
        }
        if (line.front() != '[') {
            readKey(line, prefix, configuration);
        } else if (line.size() > 1 && line.back() == ']') {
            prefix = readSection(line, configuration);
        }
    }
}

} // namespace Orvil
