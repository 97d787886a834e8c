#include "formats/registry.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace nmr {
namespace {

TEST(Registry, FamiliesStandUnderTheirNumbersWithTagsOfTheirOwn)
{
    ASSERT_EQ(FormatRows().size(), 18U);
    std::set<std::string_view> tags;
    int number = 0;
    for (const FormatRow& row : FormatRows()) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.family, number++);
        EXPECT_EQ(FindFormat(row.family), &row);
        EXPECT_TRUE(tags.insert(row.tag_1d).second);
        EXPECT_FALSE(row.files.empty());
    }
    EXPECT_EQ(FindFormat(18), nullptr);
    EXPECT_EQ(FindFormat(-1), nullptr);
}

TEST(Registry, BrukerCmxAndTextFormatsStoreTheirFidsInTheOppositeSense)
{
    std::set<int> opposite;
    for (const FormatRow& row : FormatRows())
        if (row.sense == FidSense::opposite) opposite.insert(row.family);
    EXPECT_EQ(opposite, (std::set<int>{4, 8, 9, 13, 14}));
}

std::string Text(const std::vector<FilterRow>& rows)
{
    std::string text;
    for (const FilterRow& row : rows) text += row.description + "(" + row.expression + ")|";
    return text;
}

TEST(Registry, FiltersOfTheOpenDialog)
{
    ASSERT_EQ(FileTypeTable().size(), 21U); // an empty row 0 and 20 rows, the last one free
    EXPECT_EQ(FileTypeTable()[0].description, "-----");
    EXPECT_EQ(FileTypeTable()[16].expression, "*.jdx;*.dx");

    GlobalBlock g;
    EXPECT_EQ(Text(OpenDialogFilters(g)), "Ver.3/4 Type(*.tv1;*.tvo*)|All File(*.*)|");
    g.FileTypeSlots = {"", "*.als", "*.jdf", "*.gxd*", "*.jdx;*.dx", ""};
    EXPECT_EQ(Text(OpenDialogFilters(g)),
              "Ver.3/4 Type(*.tv1;*.tvo*)|JEOL Alice2(Excalibur) File(*.als)|JEOL Delta(ECA/ECP) File(*.jdf)|"
              "JEOL GX/GSX/EX File(*.gxd*)|JCAMP File(*.jdx;*.dx)|All File(*.*)|");
    // The user's own words stand; an expression without words is looked up, else names itself.
    g.FileTypeSlots = {"", "*.xyz", "", "*.IMA;*.DCM", "*.abc", "*.def"};
    g.FileTypeNames = {"", "My files", "", "", "", "D"};
    EXPECT_EQ(Text(OpenDialogFilters(g)), "Ver.3/4 Type(*.tv1;*.tvo*)|My files(*.xyz)|SIEMENS File(*.IMA;*.DCM)|"
                                          "*.abc(*.abc)|D(*.def)|All File(*.*)|");
}

} // namespace
} // namespace nmr
