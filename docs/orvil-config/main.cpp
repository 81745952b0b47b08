// SPDX-License-Identifier: MIT
// Reads configuration files and arguments into a store and prints the resulting tree, so that the
// store can be tried by hand:
//     orvil-config -readIniFile=server.ini server.port=8080 'server.host[1]=backup'
#include "misc/configuration/configuration.h"
#include "misc/configuration/configurationreader.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr const char* usage =
    "usage: orvil-config ARGUMENT...\n"
    "Applies the arguments in their order and prints every value as PATH[INDEX]=VALUE.\n"
    "  -readIniFile=FILE   read an INI file\n"
    "  -readXmlFile=FILE   read an XML file\n"
    "  PATH=VALUE          set a value; PATH[INDEX]=VALUE sets one of a list\n"
    "  -get=PATH           print only the values that PATH has, inherited ones too\n";

std::vector<std::string> sorted(std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    return names;
}

void printValues(const Orvil::Configuration& store, const std::string& path) {
    const std::vector<std::string>& values = store.getValueList(path);
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::cout << path << '[' << i << "]=" << values[i] << '\n';
    }
}

/// Prints what is below the category, sorted by path.
void printTree(const Orvil::Configuration& store) {
    std::vector<std::string> pending{""};
    while (!pending.empty()) {
        const std::string path = pending.back();
        pending.pop_back();
        const std::string prefix = path.empty() ? "" : path + ".";
        for (const std::string& name : sorted(store.getSubProperties(path))) {
            printValues(store, prefix + name);
        }
        std::vector<std::string> categories = sorted(store.getSubCategories(path));
        for (auto name = categories.rbegin(); name != categories.rend(); ++name) {
            pending.push_back(prefix + *name);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty() || arguments.front() == "--help") {
        (arguments.empty() ? std::cerr : std::cout) << usage;
        return arguments.empty() ? 2 : 0;
    }
    try {
        Orvil::Configuration store;
        Orvil::CommandlineConfigurationReader(argc - 1, argv + 1).read(store);
        bool printedSome = false;
        for (const std::string& argument : arguments) {
            if (argument.starts_with("-get=")) {
                printValues(store, argument.substr(5));
                printedSome = true;
            }
        }
        if (!printedSome) {
            printTree(store);
        }
    } catch (const std::exception& failure) {
        std::cerr << "orvil-config: " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
