// SPDX-License-Identifier: MIT
// Names that end in an index.
#include "misc/configuration/readersupport.h"

#include "misc/configuration/configurationreader.h"
#include "misc/text/numbers.h"

namespace Orvil::ConfigurationReading {

bool readIndex(std::string_view text, unsigned& index) {
    bool ok = false;
    index = safeParse<unsigned>(text, ok);
    if (ok && index <= IConfigurationReader::greatestIndex) {
        return true;
    }
    index = 0;
    return false;
}

bool splitIndex(std::string_view text, IndexedName& result) {
    result = {text, 0};
    if (!text.ends_with(']')) {
        return true;
    }
    const auto bracket = text.rfind('[');
    if (bracket == text.npos) {
        return false;
    }
    result.name = text.substr(0, bracket);
    return readIndex(text.substr(bracket + 1, text.size() - bracket - 2), result.index);
}

} // namespace Orvil::ConfigurationReading
