// SPDX-License-Identifier: MIT
// Configurations from a command line.
#include "misc/configuration/configurationreader.h"
#include "misc/configuration/readersupport.h"
#include "misc/text/strings.h"
#include "misc/text/utf.h"

#include <string_view>

namespace Orvil {

CommandlineConfigurationReader::CommandlineConfigurationReader(int argc, const char* const* argv)
    : arguments_(argv, argv + argc) {}

CommandlineConfigurationReader::CommandlineConfigurationReader(int argc,
                                                               const wchar_t* const* argv) {
    for (int i = 0; i < argc; ++i) {
        arguments_.push_back(makeASCII(argv[i], std::locale::classic()));
    }
}

CommandlineConfigurationReader::CommandlineConfigurationReader(const std::string& commandLine)
    : arguments_(tokenize(commandLine, " \t\n", true)) {}

void CommandlineConfigurationReader::read(Configuration& configuration) {
    for (const std::string_view argument : arguments_) {
        const auto equals = argument.find('=');
        if (equals == argument.npos) {
            continue;
        }
        const std::string_view name = argument.substr(0, equals);
        const std::string value(argument.substr(equals + 1));
        if (name == "-readIniFile") {
            INIConfigurationReader(value).read(configuration);
        } else if (name == "-readXmlFile") {
            XMLConfigurationReader(value).read(configuration);
        }
        ConfigurationReading::IndexedName path;
        if (name.starts_with('-') || !ConfigurationReading::splitIndex(name, path)) {
            continue;
        }
        configuration.setValueAt(path.name, path.index, value);
    }
}

} // namespace Orvil
