// SPDX-License-Identifier: MIT
// The program that shows the configuration store.
#include "tests/support/folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <utility>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

class TheExampleProgram : public AFolder {
protected:
    /// Runs it with arguments as a shell takes them, stopped after 10 seconds of computing, and
    /// gives all that it prints.
    std::string run(const std::string& arguments) {
        const std::string command =
            "ulimit -t 10; " + std::string(ORVIL_CONFIG) + " 2>&1 " + arguments;
        std::FILE* pipe = popen(command.c_str(), "r");
        std::string output;
        for (int byte = std::fgetc(pipe); byte != EOF; byte = std::fgetc(pipe)) {
            output += static_cast<char>(byte);
        }
        const int ended = pclose(pipe);
        status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
        return output;
    }

    int status = -1;
};

} // namespace

TEST_F(TheExampleProgram, PrintsTheTreeThatItsArgumentsMake) {
    const std::string ini = file("a.ini", "[b]\nx=1\n[b.in+]\ny=2\n");
    EXPECT_EQ(run("-readIniFile=" + ini + " 'a.list[1]=z' top=t z=last"),
              "top[0]=t\nz[0]=last\na+.\na.list[0]=\na.list[1]=z\nb.\nb.x[0]=1\nb.in+.\n"
              "b.in.y[0]=2\n");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(run("-readIniFile=" + file("b.ini", "[empty+]\n[plain]\n") + " -readXmlFile=" +
                  file("b.xml", "<configuration><c inherit='true'><!-- --></c></configuration>")),
              "c+.\nempty+.\nplain.\n")
        << "nothing in them";
    EXPECT_EQ(run("-readIniFile=" + ini + " -get=b.in.x"), "b.in.x[0]=1\n") << "inherited";
    EXPECT_THAT(run(""), StartsWith("usage: "));
    EXPECT_EQ(status, 2);
    EXPECT_THAT(run("--help"), StartsWith("usage: "));
    EXPECT_EQ(status, 0);
}

TEST_F(TheExampleProgram, WarnsOfArgumentsThatAreOfNoUse) {
    const std::string missing = (folder / "none.ini").string();
    const std::string readable = file("empty.ini", "");
    const std::pair<std::string, const char*> cases[] = {
        {"server.ini", "ignored, it has no '='"},
        {"-readInFile=" + readable, "ignored, there is no such option"},
        {"-readIniFile=" + missing, "the file cannot be read"},
        {"-readIniFile=" + folder.string(), "the file cannot be read"},
        {"k[x]=1", "ignored, between the brackets is no index that a list can have"},
        {"k[-1]=1", "ignored, between the brackets is no index that a list can have"},
        {"a.b=2", "no value is found under that name"},
        {"..x=1", "no value is found under that name"},
        {"=v", "no value is found under that name"},
    };
    for (const auto& [argument, warning] : cases) {
        EXPECT_EQ(run("a=1 '" + argument + "' -readIniFile=" + readable),
                  "orvil-config: '" + argument + "': " + warning + "\na[0]=1\n");
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(run("a=1 -get=b"), "orvil-config: '-get=b': there are no such values\n");
}

TEST_F(TheExampleProgram, FailsWhenItCannotReadOrWrite) {
    EXPECT_THAT(run("-readXmlFile=" + file("a.xml", "no XML")),
                HasSubstr("orvil-config: Exception in file"));
    EXPECT_EQ(status, 1);
    for (const char* arguments : {"a=1 >/dev/full", "--help >/dev/full"}) {
        EXPECT_EQ(run(arguments), "orvil-config: the output cannot be written\n");
        EXPECT_EQ(status, 1);
    }
}
