// SPDX-License-Identifier: MIT
// What the readers make of files, texts and arguments.
#include "failures.h"
#include "misc/configuration/configurationreader.h"
#include "tests/support/folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using namespace Orvil;
using testing::HasSubstr;

namespace {

using Values = std::vector<std::string>;
using Tree = std::map<std::string, Values>;

/// All properties by path, and categories as paths with a dot at the end.
Tree treeOf(const Configuration& store, const std::string& path = "") {
    Tree tree;
    const std::string prefix = path.empty() ? "" : path + ".";
    for (const std::string& name : store.getSubProperties(path)) {
        tree[prefix + name] = store.getValueList(prefix + name);
    }
    for (const std::string& name : store.getSubCategories(path)) {
        tree[prefix + name + "."];
        // Without a name directly below the root it has the root's own path.
        if (!(prefix + name).empty()) {
            tree.merge(treeOf(store, prefix + name));
        }
    }
    return tree;
}

struct Case {
    std::string text;
    Tree tree;
};

using AConfigurationFile = AFolder;

} // namespace

TEST(AnINIText, IsReadLineByLine) {
    const Case cases[] = {
        {"[server]\nport = 80\nhost[1]=\"a b\"\n",
         {{"server.", {}}, {"server.port", {"80"}}, {"server.host", {"", "a b"}}}},
        {"k v\nl==\t= w  x \r\n m\t1;comment\n;n=1\n\n \t\r\n",
         {{"k", {"v"}}, {"l", {"w  x"}}, {"m", {"1"}}}},
        {"k\nk=\nk[x]=1\nk]=1\nk[]=1\n[s\n[\nonly ; = 1\n", {}},
        {"k=\"v\"\nl=\"v\nm=\"\nn=\"\"\no=v\"w\"\n",
         {{"k", {"v"}}, {"l", {""}}, {"m", {""}}, {"n", {""}}, {"o", {"v\"w\""}}}},
        {"[ a.b + ]\nx=1\n[c]\ny=2",
         {{"a.", {}}, {"a.b .", {}}, {"a.b .x", {"1"}}, {"c.", {}}, {"c.y", {"2"}}}},
        {"a[0][2]=z", {{"a[0]", {"", "", "z"}}}},
        // A value without a name has no path that reads it: the empty path names the root.
        {"=v", {{"", {}}}},
        {"p=1\n[p]\nx=2\n", {{"p", {"1"}}}},
        {"[]\nx=1", {{"x", {"1"}}}},
        {"[.]\nx=1\n[a.]\ny=1\n[.b]\nz=1",
         {{".", {}}, {"a.", {}}, {"a..", {}}, {"a..y", {"1"}}, {"b.", {}}}},
        {"v[2]=c\nv=a\nv[1]=b", {{"v", {"a", "b", "c"}}}},
        {"k[65536]=1\nk[-1]=1\nk[4294967296]=1\nl=2\n", {{"l", {"2"}}}},
    };
    for (const Case& c : cases) {
        Configuration store;
        std::istringstream stream(c.text);
        INIConfigurationReader(stream).read(store);
        EXPECT_EQ(treeOf(store), c.tree) << c.text;
    }
}

TEST(AnINIText, MakesInheritingSectionsAndListsUpToAGreatestIndex) {
    Configuration store;
    std::istringstream stream("[a]\nx=0\ny=1\n[a.s+]\nx[1]=own\n[a.t]\nk[65535]=last\n");
    INIConfigurationReader(stream).read(store);
    EXPECT_EQ(store.getValueCount("a.t.k"), 65536U);
    EXPECT_EQ(store.getString("a.s.y", "none"), "1");
    EXPECT_EQ(store.getString("a.t.y", "none"), "none");
    EXPECT_EQ(store.getValueList("a.s.x"), (Values{"0", "own"})) << "from the list around it";
}

TEST(AnXMLText, IsReadElementByElement) {
    const Case cases[] = {
        {"<configuration><server><port>80</port><host index='0'>a</host><host index='1'> b "
         "</host></server></configuration>",
         {{"server.", {}}, {"server.port", {"80"}}, {"server.host", {"a", " b "}}}},
        {"<other><a>1</a></other>", {}},
        {"<configuration>text<!-- c --><a>1</a><a>2</a><b/></configuration>",
         {{"a", {"2"}}, {"b", {""}}}},
        {"<configuration><a>te<!-- c -->xt</a></configuration>", {{"a.", {}}}},
        {"<configuration><a><![CDATA[<1>]]>&amp;</a></configuration>", {{"a", {"<1>&"}}}},
        {"<configuration><a.b>1</a.b><\xC3\xA4><c>1</c></\xC3\xA4><x:y xmlns:x='u'>1</x:y>"
         "</configuration>",
         {{"y", {"1"}}}},
        // References to declared entities and processing instructions are read as elements are.
        {"<!DOCTYPE configuration [<!ENTITY host 'h'>]><configuration>"
         "<server>http://&host;/</server><p>1<?x y?></p></configuration>",
         {{"server.", {}}, {"server.host", {""}}, {"p.", {}}, {"p.x", {""}}}},
        {"<configuration><a>1</a><a><b>2</b></a><c>3</c></configuration>",
         {{"a", {"1"}}, {"c", {"3"}}}},
        {"<configuration><a index='x'>1</a><b index='2'>2</b><c index='65536'>3</c>"
         "<d index='-1'>4</d></configuration>",
         {{"a", {"1"}}, {"b", {"", "", "2"}}, {"c", {"3"}}, {"d", {"4"}}}},
    };
    for (const Case& c : cases) {
        Configuration store;
        const auto reader = XMLConfigurationReader::createStringInstance(c.text);
        reader->read(store);
        EXPECT_EQ(treeOf(store), c.tree) << c.text;
        reader->read(store);
        EXPECT_EQ(treeOf(store), c.tree) << "a second time " << c.text;
    }
}

TEST(AnXMLText, MakesInheritingCategoriesByAttribute) {
    Configuration store;
    XMLConfigurationReader::createStringInstance(
        "<configuration><a><x>1</x><b inherit='Yes'><y/></b><c inherit='maybe'><y/></c></a>"
        "</configuration>")
        ->read(store);
    EXPECT_EQ(store.getString("a.b.x", "none"), "1");
    EXPECT_EQ(store.getString("a.c.x", "none"), "none");
}

TEST(ACommandLine, IsReadInItsOrder) {
    const Case cases[] = {
        {"program a.b[2]=z", {{"a.", {}}, {"a.b", {"", "", "z"}}}},
        {"x=1\tx=2\ny= ==v z", {{"x", {"2"}}, {"y", {""}}, {"", {}}}},
        {"-other=1 --x=2 k]=1 k[y]=2 k[1=3", {{"k[1", {"3"}}}},
        {"p=1 p.q=2 q[65536]=1 q[-1]=1", {{"p", {"1"}}}},
        {"..x=1", {{".", {}}}},
        // What follows a leading dot is made but not found: each value starts from an empty list.
        {".x[0]=1 .x[1]=2", {{"x", {"", "2"}}}},
    };
    for (const Case& c : cases) {
        Configuration store;
        CommandlineConfigurationReader(c.text).read(store);
        EXPECT_EQ(treeOf(store), c.tree) << c.text;
    }
    Configuration store;
    const std::array<const wchar_t*, 2> wide{L"program=1", L"a=\x4E00z"};
    CommandlineConfigurationReader(2, wide.data()).read(store);
    const std::array<const char*, 2> narrow{"b= 1 2", "program=2"};
    CommandlineConfigurationReader(2, narrow.data()).read(store);
    EXPECT_EQ(treeOf(store), (Tree{{"a", {"?z"}}, {"b", {" 1 2"}}, {"program", {"2"}}}));
}

TEST_F(AConfigurationFile, IsPulledInByTheCommandLine) {
    const std::string ini = file("a.ini", "[s]\nx=ini\ny=ini\n");
    const std::string xml = file("a.xml", "<configuration><s><x>xml</x></s></configuration>");
    Configuration store;
    CommandlineConfigurationReader("s.x=first -readIniFile=" + ini + " -readXmlFile=" + xml +
                                   " s.y[1]=last -readIniFile=" + (folder / "none").string())
        .read(store);
    EXPECT_EQ(treeOf(store), (Tree{{"s.", {}}, {"s.x", {"xml"}}, {"s.y", {"ini", "last"}}}));
    INIConfigurationReader again(ini);
    again.read(store);
    again.read(store);
    EXPECT_EQ(store.getString("s.x", ""), "ini");
    EXPECT_THAT(messageOf([&] { XMLConfigurationReader(folder / "none").read(store); }),
                HasSubstr("failed to load external entity"));
    EXPECT_THAT(messageOf([&] { XMLConfigurationReader(ini).read(store); }),
                HasSubstr("Document not parsed successfully"));
}
