// SPDX-License-Identifier: MIT
// Reads configuration files and arguments into a store and prints the resulting tree, so that the
// store can be tried by hand:
//     orvil-config -readIniFile=server.ini server.port=8080 'server.host[1]=backup'
#include "misc/configuration/configuration.h"
#include "misc/configuration/configurationreader.h"
#include "misc/configuration/readersupport.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* usage =
    "usage: orvil-config ARGUMENT...\n"
    "Applies the arguments in their order and prints every category as PATH. (PATH+. if it\n"
    "inherits) and every value as PATH[INDEX]=VALUE.\n"
    "  -readIniFile=FILE   read an INI file\n"
    "  -readXmlFile=FILE   read an XML file\n"
    "  PATH=VALUE          set a value; PATH[INDEX]=VALUE sets one of a list\n"
    "  -get=PATH           print only the values that PATH has, inherited ones too\n"
    "Warns on standard error of arguments that are of no use. Fails if a file is refused\n"
    "or the output cannot be written.\n"
    "The same in both forms (a category that inherits has a + or the attribute):\n"
    "  [server]            <configuration><server>\n"
    "  host = one            <host>one</host>\n"
    "  host[1] = two         <host index=\"1\">two</host>\n"
    "  [server.backup+]      <backup inherit=\"true\">\n"
    "  port = 80               <port>80</port>\n"
    "                        </backup></server></configuration>\n"
    "What has no such form is passed over; in XML, an index that is none counts as 0.\n";

constexpr std::string_view getOption = "-get=";
constexpr std::string_view iniOption = "-readIniFile=";
constexpr std::string_view xmlOption = "-readXmlFile=";

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

/// Prints the whole tree: of each category first itself, then its properties, then its categories,
/// by name.
void printTree(const Orvil::Configuration& store) {
    std::vector<std::string> pending{""};
    while (!pending.empty()) {
        const std::string path = pending.back();
        pending.pop_back();
        const std::string prefix = path.empty() ? "" : path + ".";
        if (!path.empty()) {
            std::cout << path << (store.isInheriting(path) ? "+.\n" : ".\n");
        }
        for (const std::string& name : sorted(store.getSubProperties(path))) {
            printValues(store, prefix + name);
        }
        std::vector<std::string> categories = sorted(store.getSubCategories(path));
        for (auto name = categories.rbegin(); name != categories.rend(); ++name) {
            // A category without a name directly below the root has the root's own path: nothing in
            // it can be reached.
            if (!(prefix + *name).empty()) {
                pending.push_back(prefix + *name);
            }
        }
    }
}

bool isReadable(const std::string& file) {
    std::ifstream stream(file);
    stream.peek();
    return stream.is_open() && !stream.bad(); // bad: a folder, for one
}

/// Why an argument has been of no use, once all are read; empty if it has been of some.
std::string idleness(std::string_view argument, const Orvil::Configuration& store) {
    const auto equals = argument.find('=');
    if (equals == argument.npos) {
        return "ignored, it has no '='";
    }
    const std::string value(argument.substr(equals + 1));
    if (argument.starts_with(getOption)) {
        return store.getValueCount(value) == 0 ? "there are no such values" : "";
    }
    if (argument.starts_with(iniOption)) {
        return isReadable(value) ? "" : "the file cannot be read";
    }
    if (argument.starts_with(xmlOption)) {
        return ""; // a file that cannot be read has failed by now
    }
    if (argument.starts_with('-')) {
        return "ignored, there is no such option";
    }
    Orvil::ConfigurationReading::IndexedName name;
    if (!Orvil::ConfigurationReading::splitIndex(argument.substr(0, equals), name)) {
        return "ignored, between the brackets is no index that a list can have";
    }
    return store.getValueCount(name.name) > name.index ? "" : "no value is found under that name";
}

/// Prints what the arguments ask for, and warns of those that are of no use.
void run(const std::vector<std::string>& arguments, const Orvil::Configuration& store) {
    bool printedSome = false;
    for (const std::string& argument : arguments) {
        if (const std::string reason = idleness(argument, store); !reason.empty()) {
            std::cerr << "orvil-config: '" << argument << "': " << reason << '\n';
        }
        if (argument.starts_with(getOption)) {
            printValues(store, argument.substr(getOption.size()));
            printedSome = true;
        }
    }
    if (!printedSome) {
        printTree(store);
    }
}

/// The exit status, once everything has been printed or not.
int finished() {
    if (std::cout.flush()) {
        return 0;
    }
    std::cerr << "orvil-config: the output cannot be written\n";
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const auto isHelp = [](const std::string& text) { return text == "--help" || text == "-h"; };
    if (arguments.empty() || std::any_of(arguments.begin(), arguments.end(), isHelp)) {
        (arguments.empty() ? std::cerr : std::cout) << usage;
        return arguments.empty() ? 2 : finished();
    }
    try {
        Orvil::Configuration store;
        Orvil::CommandlineConfigurationReader(argc - 1, argv + 1).read(store);
        run(arguments, store);
    } catch (const std::exception& failure) {
        std::cerr << "orvil-config: " << failure.what() << '\n';
        return 1;
    }
    return finished();
}
