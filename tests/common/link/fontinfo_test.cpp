// SPDX-License-Identifier: MIT
// The plug-in's font records.
#include "GLYFontInfo.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

using GLY::GLYFontInfo;
using Record = Orvil::SmartPointer<GLYFontInfo>;

TEST(AFontRecord, KnowsItsTypeByKeywordAndTechnology) {
    const std::tuple<int, std::string, std::string> cases[] = {{0, "T1", "PostScript"},
                                                               {1, "TT", "TrueType"},
                                                               {2, "OT_T1", "OpenType PostScript"},
                                                               {3, "OT_TT", "OpenType TrueType"},
                                                               {4, "", "Unknown"},
                                                               {7, "", "Unknown"},
                                                               {-1, "", "Unknown"}};
    for (const auto& [type, keyword, technology] : cases) {
        GLYFontInfo info;
        info.font.type = static_cast<Protocol::Font::Type>(type);
        EXPECT_EQ(info.getTypeString(), keyword) << type;
        EXPECT_EQ(info.getTechnology(), technology) << type;
        if (!keyword.empty()) {
            EXPECT_EQ(GLYFontInfo::typeStringToEnum(keyword), type);
        }
    }
    for (const char* const text : {"", "ot_tt", "all", "OT_TT ", "Unknown"}) {
        EXPECT_EQ(GLYFontInfo::typeStringToEnum(text), 4) << text;
    }
}

TEST(ASetOfFontRecords, KeepsTheFirstOfEachFamilyInAscendingByteOrder) {
    std::set<Record, GLYFontInfo::SDescendingInfoSort> records;
    for (const auto& [family, psName] : std::vector<std::pair<std::string, std::string>>{
             {"b", "1"}, {"\xc3\xa4", "2"}, {"B", "3"}, {"b", "4"}, {"", "5"}}) {
        const Record record(new GLYFontInfo);
        record->font.familyName = family;
        record->font.psName = psName;
        records.insert(record);
    }
    std::string order;
    for (const Record& record : records) {
        order += record->font.psName;
    }
    EXPECT_EQ(order, "5312");
}
