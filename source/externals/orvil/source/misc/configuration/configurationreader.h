// SPDX-License-Identifier: MIT
// Readers that fill a configuration: from XML, from INI files, from a command line.
#pragma once

#include "misc/configuration/configuration.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Orvil {

/// Adds what it reads to whatever the store holds. May be used repeatedly.
/// A few bytes may ask for a long list, so an index beyond `greatestIndex` is taken as one that
/// cannot be read. What all lines of an input ask for together is not bounded.
class IConfigurationReader {
public:
    static constexpr unsigned greatestIndex = 65535;

    IConfigurationReader() = default;
    IConfigurationReader(const IConfigurationReader&) = delete;
    IConfigurationReader& operator=(const IConfigurationReader&) = delete;
    virtual ~IConfigurationReader() = default;
    virtual void read(Configuration& configuration) = 0;
};

/// Reads the children of a root element "configuration"; any other root reads as empty.
///
/// An element that holds nothing but text is a property, the text (as it stands) its value at the
/// attribute "index", or at 0 if there is none that can be read. An element that holds anything
/// else is a category, which inherits if its attribute "inherit" says so; text in it is ignored.
/// Elements whose names have other characters than ASCII letters, digits, "_" and "-" are skipped
/// with all below them.
///
/// "Anything else" includes comments, references to entities that the document declares, and
/// processing instructions. A comment is then passed over, but the other two are read like
/// elements: "<server>http://&host;/</server>" makes the category server with the empty property
/// host, and "<p>1<?x y?></p>" the category p with the empty property x. Throws what the XML layer
/// throws when the document cannot be read.
class XMLConfigurationReader : public IConfigurationReader {
public:
    explicit XMLConfigurationReader(std::string fileName);
    /// Reads a text instead of a file.
    [[nodiscard]] static std::unique_ptr<XMLConfigurationReader>
    createStringInstance(const std::string& text);

    void read(Configuration& configuration) override;

private:
    std::string fileName_; // empty: text_ is read
    std::string text_;
};

/// Reads lines: "; comment", "[section]", "[section+]" for one that inherits, "key = value",
/// "key value", "key[index] = value", with the value in double quotes or not. Of a value that opens
/// with a quote the line's last character is dropped, whatever it is. Lines of no such form, or
/// with an index that cannot be read, are ignored. A file that cannot be opened reads as empty.
class INIConfigurationReader : public IConfigurationReader {
public:
    /// The file is opened at read() and closed after it.
    explicit INIConfigurationReader(std::string fileName);
    /// The stream must outlive the reader and is not closed.
    explicit INIConfigurationReader(std::istream& stream);

    void read(Configuration& configuration) override;

private:
    static void readLines(std::istream& stream, Configuration& configuration);

    std::string fileName_;
    std::istream* stream_ = nullptr;
};

/// Reads "path=value" and "path[index]=value"; "-readIniFile=FILE" and "-readXmlFile=FILE" read a
/// file on the spot. Other arguments, and those with an index that cannot be read, are ignored.
/// Later arguments and files overwrite earlier ones.
class CommandlineConfigurationReader : public IConfigurationReader {
public:
    CommandlineConfigurationReader(int argc, const char* const* argv);
    /// Characters beyond ASCII become "?".
    CommandlineConfigurationReader(int argc, const wchar_t* const* argv);
    /// Split at blanks, tabs and newlines.
    explicit CommandlineConfigurationReader(const std::string& commandLine);

    void read(Configuration& configuration) override;

private:
    std::vector<std::string> arguments_;
};

} // namespace Orvil
