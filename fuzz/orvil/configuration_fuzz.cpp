// SPDX-License-Identifier: MIT
// The three configuration readers. The first byte chooses one; the store it leaves must hold
// together: every name listed is found again, and a copy says the same.
#include "fuzz/require.h"
#include "misc/configuration/configuration.h"
#include "misc/configuration/configurationreader.h"
#include "misc/exception.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace {

void checkTree(const Orvil::Configuration& store, const Orvil::Configuration& copy) {
    std::vector<std::string> pending{""};
    for (int visited = 0; !pending.empty() && visited < 1000; ++visited) {
        const std::string path = pending.back();
        pending.pop_back();
        const std::string prefix = path.empty() ? "" : path + ".";
        for (const std::string& name : store.getSubProperties(path)) {
            const std::string full = prefix + name;
            if (full.empty()) {
                continue; // the empty path names the root
            }
            REQUIRE(store.getValueList(full) == copy.getValueList(full));
            REQUIRE(store.getValueCount(full) > 0);
        }
        for (const std::string& name : store.getSubCategories(path)) {
            if (!(prefix + name).empty()) {
                pending.push_back(prefix + name);
            }
        }
    }
}

/// Keeps reading of files out of the fuzzing: the command line is left what sets values.
std::string withoutFiles(std::string text) {
    for (std::size_t at = text.find("-read"); at != text.npos; at = text.find("-read")) {
        text.erase(at, 5);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    Orvil::Configuration store;
    try {
        switch (data[0] % 3) {
        case 0: {
            std::istringstream stream(text);
            Orvil::INIConfigurationReader(stream).read(store);
            break;
        }
        case 1:
            Orvil::XMLConfigurationReader::createStringInstance(text)->read(store);
            break;
        default:
            Orvil::CommandlineConfigurationReader(withoutFiles(text)).read(store);
        }
    } catch (const Orvil::Exception& failure) {
        REQUIRE(*failure.what() != '\0');
    }
    checkTree(store, *store.getCategory("", true));
    return 0;
}
