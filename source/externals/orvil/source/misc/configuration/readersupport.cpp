// SPDX-License-Identifier: MIT
// Names that end in an index, and storing what they name.
#include "misc/configuration/readersupport.h"

#include "misc/configuration/configurationreader.h"
#include "misc/exception.h"
#include "misc/text/numbers.h"

#include <utility>

namespace Orvil::ConfigurationReading {

namespace {

constexpr const char* sourceFile = "source/externals/orvil/source/misc/configuration/readersupport";

} // namespace

bool splitIndex(std::string_view text, IndexedName& result) {
    result = {text, 0};
    if (!text.ends_with(']')) {
        return true;
    }
    const auto bracket = text.rfind('[');
    if (bracket == text.npos) {
        return false;
    }
    bool ok = false;
    result.index = safeParse<unsigned>(text.substr(bracket + 1, text.size() - bracket - 2), ok);
    result.name = text.substr(0, bracket);
    return ok;
}

void ValueWriter::setValueAt(std::string_view path, unsigned index, std::string value,
                             const std::string& place) {
    constexpr unsigned greatestIndex = IConfigurationReader::greatestIndex;
    constexpr unsigned greatestAddition = IConfigurationReader::greatestAddition;
    if (index > greatestIndex) {
        throw Exception(place + ": the index " + toString(index, 0, 6) + " of '" +
                            std::string(path) + "' is greater than " +
                            toString(greatestIndex, 0, 6),
                        sourceFile, __LINE__, "");
    }
    configuration_.setValueAt(path, index, std::move(value), &added_);
    if (added_ > greatestAddition) {
        throw Exception(place + ": with '" + std::string(path) +
                            "' the empty and inherited values of all lists are more than " +
                            toString(greatestAddition, 0, 6),
                        sourceFile, __LINE__, "");
    }
}

} // namespace Orvil::ConfigurationReading
