// SPDX-License-Identifier: MIT
// Names that end in an index.
#include "misc/configuration/readersupport.h"

#include "misc/configuration/configurationreader.h"
#include "misc/exception.h"
#include "misc/text/numbers.h"

namespace Orvil::ConfigurationReading {

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

void checkIndex(unsigned index, std::string_view path, const std::string& place) {
    if (index > IConfigurationReader::greatestIndex) {
        throw Exception(
            place + ": the index " + toString(index, 0, 6) + " of '" + std::string(path) +
                "' is greater than " + toString(IConfigurationReader::greatestIndex, 0, 6),
            "source/externals/orvil/source/misc/configuration/configurationreader", __LINE__, "");
    }
}

} // namespace Orvil::ConfigurationReading
