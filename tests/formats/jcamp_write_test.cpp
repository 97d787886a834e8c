// JCAMP-DX writers: read back here and by a decoder of the test's own.

#include "formats/jcamp_fixture.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

namespace nmr {
namespace {

using namespace test;

// --- A decoder that shares nothing with the program's

struct Decoded {
    std::map<std::string, std::string> records; ///< first of each label
    std::vector<std::string> labels;            ///< in order
    std::vector<std::vector<double>> tables;    ///< as stored
    std::size_t longest_line = 0;
};

/// Value and class ('A' plain, 'S', 'D', 'U') of the number whose first character stands at `at`.
std::pair<char, double> Number(const std::string& line, std::size_t& at)
{
    static const std::string kClasses[] = {"@ABCDEFGHI", "@abcdefghi", "%JKLMNOPQR", "%jklmnopqr", "-STUVWXYZs"};
    static const char kNames[] = "SSDDU";
    std::string digits;
    char kind = 'A';
    for (std::size_t c = 0; c < 5; ++c) {
        const std::size_t digit = kClasses[c].find(line[at]);
        if (digit == std::string::npos || line[at] == '-') continue;
        kind = kNames[c];
        digits = (c == 1 || c == 3 ? "-" : "") + std::to_string(digit);
        break;
    }
    if (kind == 'A') digits = line[at];
    for (++at; at < line.size() && std::isdigit(static_cast<unsigned char>(line[at])) != 0;) digits += line[at++];
    return {kind, std::stod(digits)};
}

void DecodeLine(const std::string& line, std::vector<double>& values, char& last_kind)
{
    const char kind_before = last_kind;
    double difference = 0;
    bool is_x = true, is_first = true;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] == ' ') {
            ++at;
            continue;
        }
        const auto [kind, value] = Number(line, at);
        if (is_x) {
            is_x = false;
            continue;
        }
        if (kind == 'S' && is_first && kind_before == 'D')
            EXPECT_EQ(value, values.back()) << "check value";
        else if (kind == 'S')
            values.push_back(value);
        else if (kind == 'D')
            values.push_back(values.back() + (difference = value));
        else
            for (int i = 1; i < value; ++i) values.push_back(values.back() + (last_kind == 'D' ? difference : 0));
        if (kind != 'U') last_kind = kind;
        is_first = false;
    }
}

Decoded Decode(const std::string& text)
{
    Decoded out;
    std::istringstream in(text);
    char last_kind = 'S';
    bool in_table = false;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("$$")) continue;
        if (!line.starts_with("##")) {
            EXPECT_TRUE(in_table) << line;
            out.longest_line = std::max(out.longest_line, line.size());
            DecodeLine(line, out.tables.back(), last_kind);
            continue;
        }
        const std::string label = line.substr(2, line.find('=') - 2);
        out.labels.push_back(label);
        out.records.emplace(label, line.substr(line.find('=') + 1));
        in_table = label == "XYDATA" || label == "DATA TABLE";
        if (in_table) out.tables.emplace_back();
        last_kind = 'S';
    }
    return out;
}

/// Column of a list, as a number.
double Column(const Decoded& file, const std::string& label, int column)
{
    std::istringstream in(file.records.at(label));
    std::string part;
    for (int i = 0; i <= column; ++i) std::getline(in, part, ',');
    return std::stod(part);
}

// --- Spectra

struct Shape {
    const char* name;
    std::int32_t points;
    double first_ppm, step_ppm, mhz, scale;
};
constexpr Shape kShapes[] = {
    {"1H as transformed", 4096, -2.0, 0.003, 400.1318, 1},
    {"13C as transformed", 8192, -19.45, 0.029, 150.9355, 1e6},
    {"falling axis", 1024, 12.5, -0.0137, 300.13, 1e9},
    {"low field", 256, 14.2, -0.056, 60.12, 1},
    {"weak", 512, -1, 0.02, 500, 1e-7},
    {"strong", 512, -1, 0.02, 500, 3e20},
    {"far from its reference", 512, 3000, 0.5, 14.83, 1e-3},
    {"two points", 2, 1, -1, 400, 1},
    {"not a power of two", 1000, 5, -0.01, 400, 100},
};

void Fill(GlobalBlock& g, const Shape& shape)
{
    DataSet& set = g.Slots[0];
    g.nuclides = NuclearTable::BuiltIn();
    set.par.SMODE = 1;
    set.par.POINT = shape.points;
    set.par.ObsCenter = shape.mhz;
    set.par.OBFRQ0PPM = shape.mhz * (1 - 5e-6);
    set.par.OBNUC = "13C";
    set.par.ExpTitle = "crude $$ product\nbatch 2";
    set.par.SCANS = 64;
    set.par.PW[0] = 5.4F;
    set.par.DATIM = "31/Jan/2006 09:24:52";
    ASSERT_TRUE(AllocateSpecBuffer(g, shape.points, 0));
    std::mt19937 random(3);
    std::normal_distribution<double> noise(0, 1e-4);
    for (std::size_t i = 0; i < static_cast<std::size_t>(shape.points); ++i) {
        set.spec.XAxis[i] = shape.first_ppm + static_cast<double>(i) * shape.step_ppm;
        const double x = (static_cast<double>(i) - 0.3 * shape.points) / 4;
        const bool level = i > static_cast<std::size_t>(shape.points) * 3 / 4;
        set.spec.DataRe[0][i] = static_cast<float>(level ? 0 : shape.scale * (1 / (1 + x * x) + noise(random)));
        set.spec.DataIm[0][i] = static_cast<float>(0.01 * shape.scale * (x / (1 + x * x) + noise(random)));
    }
}

void ExpectValues(std::span<const float> written, const std::vector<double>& read, double factor, double scale)
{
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < written.size(); ++i)
        ASSERT_LE(std::fabs(read[i] * factor - static_cast<double>(written[i])),
                  0.5 * factor * (1 + 1e-9) + 1e-14 * scale)
            << i;
}

class JcampWriting : public testing::TestWithParam<Shape> {};

TEST_P(JcampWriting, BothFormsComeBack)
{
    const Shape& shape = GetParam();
    const auto g = std::make_unique<GlobalBlock>();
    Fill(*g, shape);
    const DataSet& set = g->Slots[0];
    const auto points = static_cast<std::size_t>(shape.points);
    const auto re = set.spec.DataRe[0].first(points), im = set.spec.DataIm[0].first(points);
    for (const bool reduced : {false, true}) {
        SCOPED_TRACE(reduced ? "reduced" : "extended");
        const auto text = reduced ? JcampPagesText(set, 0) : JcampText(set, 0);
        ASSERT_TRUE(text);
        const Decoded file = Decode(*text);
        EXPECT_LE(file.longest_line, 80U);
        ASSERT_EQ(file.tables.size(), reduced ? 2U : 1U);
        const double factor = reduced ? Column(file, "FACTOR", 1) : std::stod(file.records.at("YFACTOR"));
        const double im_factor = reduced ? Column(file, "FACTOR", 2) : 0;
        const double step = std::max(factor / shape.scale, 1e-10);
        EXPECT_LE(step, std::max(1e-6, 1.1e-10 / shape.scale)) << "fine enough for the highest line";
        ExpectValues(re, file.tables[0], factor, shape.scale);
        if (reduced) ExpectValues(im, file.tables[1], im_factor, shape.scale);
        const double first = reduced ? Column(file, "FIRST", 0) : std::stod(file.records.at("FIRSTX"));
        const double last = reduced ? Column(file, "LAST", 0) : std::stod(file.records.at("LASTX"));
        const double mhz = std::stod(file.records.at(".OBSERVE FREQUENCY"));
        EXPECT_NEAR(first / mhz, set.spec.XAxis[0], 1e-6);
        EXPECT_NEAR(last / mhz, set.spec.XAxis[points - 1], 1e-6);

        const JcampRead read(*text);
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_EQ(read.Warnings(), "");
        EXPECT_EQ(read.par().FIDPoints, shape.points);
        EXPECT_EQ(read.par().OBNUC, "13C");
        EXPECT_EQ(read.par().PW[0], 5.4F);
        EXPECT_EQ(read.par().SCANS, 64);
        EXPECT_EQ(read.par().DATIM, set.par.DATIM);
        for (std::size_t i = 0; i < points; ++i) {
            ASSERT_NEAR(read.set().spec.XAxis[i], set.spec.XAxis[i], 1e-6);
            const double off = static_cast<double>(read.set().spec.DataRe[0][i]) - static_cast<double>(re[i]);
            ASSERT_LE(std::fabs(off), 0.5 * factor * (1 + 1e-6) + 6e-8 * std::fabs(static_cast<double>(re[i])));
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Shapes, JcampWriting, testing::ValuesIn(kShapes), [](const auto& shape) {
    std::string name = shape.param.name;
    std::ranges::replace(name, ' ', '_');
    return name;
});

TEST(JcampWriter, HeadHasItsOrderAndSpelling)
{
    const auto g = std::make_unique<GlobalBlock>();
    Fill(*g, kShapes[0]);
    TempFolder folder;
    ASSERT_TRUE(WriteDataDX(folder / "a.dx", *g, 0));
    ASSERT_TRUE(WriteDataDx2(folder / "b.dx", *g, 0));
    const std::string extended = ReadText(folder / "a.dx"), reduced = ReadText(folder / "b.dx");
    EXPECT_TRUE(extended.starts_with("##TITLE=crude $ $ product batch 2\n##JCAMP-DX=5.00\n##DATA TYPE=NMR SPECTRUM\n"
                                     "##DATA CLASS=XYDATA\n##ORGIN=NOT SPECIFIED\n##OWNER=GUEST\n"
                                     "##DATE=31/Jan/2006 09:24:52\n##SPECTROMETER/DATA SYSTEM=\n"
                                     "##.OBSERVE FREQUENCY=400.1318\n##.OBSERVE NUCLEUS=^13C\n"))
        << extended.substr(0, 400);
    const std::vector<std::string> tail{"$TRSET",  "$REFERENCE_POINT", "XUNITS", "YUNITS", "XFACTOR",
                                        "YFACTOR", "FIRSTX",           "LASTX",  "DELTAX", "MAXY",
                                        "MINY",    "NPOINTS",          "FIRSTY", "XYDATA", "END"};
    const Decoded file = Decode(extended);
    // The order in which other programs expect the keys.
    std::istringstream words(
        "TITLE JCAMP-DX DATA_TYPE DATA_CLASS ORGIN OWNER DATE SPECTROMETER/DATA_SYSTEM .OBSERVE_FREQUENCY "
        ".OBSERVE_NUCLEUS .SOLVENT_REFERENCE .ACQUISITION_NODE .AVERAGES "
        "$DFILE $ADBIT $COMNT $CSPED $CTEMP $DELAY $DEADT $DTYPE $DUMMY $EXMOD $EXPCM $FILTR $FREQU $IRFRQ $INTVL "
        "$IRATN $IRFIN $IRNUC $IRPHS $IRRPW $IRSET $INIWT $LOOP1 $LOOP2 $LOOP3 $LOOP4 $LOOP5 $OBATN $OBFIN $OBNUC "
        "$OBSET $OBFRQ $PD $PI1 $PI2 $PI3 $PI4 $PI5 $POINT $PS1 $PS2 $PS3 $PS4 $PS5 $PW1 $PW2 $PW3 $PW4 $PW5 $RESOL "
        "$RGAIN $SCANS $SLVNT $SMEXR $SMODE $SMTMS $TIMES $TOSCN $TR $TRATN $TRFIN $TRFRQ $TRNUC $TRRPW");
    std::vector<std::string> order;
    for (std::string word; words >> word; order.push_back(word)) std::ranges::replace(word, '_', ' ');
    order.insert(order.end(), tail.begin(), tail.end());
    EXPECT_EQ(file.labels, order);
    EXPECT_EQ(file.records.at("YFACTOR"), "0.00000001"); // the highest point is just below 1
    EXPECT_EQ(file.records.at("NPOINTS"), "4096");
    const std::vector<std::string> pages{"NTUPLES", "VAR_NAME",   "SYMBOL", "VAR_TYPE",   "VAR_FORM",    "VAR_DIM",
                                         "UNITS",   "FIRST",      "LAST",   "MIN",        "MAX",         "FACTOR",
                                         "PAGE",    "DATA TABLE", "PAGE",   "DATA TABLE", "END NTUPLES", "END"};
    const Decoded two = Decode(reduced);
    EXPECT_TRUE(std::equal(pages.rbegin(), pages.rend(), two.labels.rbegin()));
    EXPECT_EQ(two.records.count("$REFERENCE_POINT"), 0U);
    EXPECT_EQ(two.records.at("DATA TABLE"), "(X++(R..R)), XYDATA");
}

TEST(JcampWriter, NoCutOfAWrittenFileIsSilent)
{
    const auto g = std::make_unique<GlobalBlock>();
    Fill(*g, {"small", 64, -1, 0.1, 400, 1});
    for (const auto& whole : {JcampText(g->Slots[0], 0), JcampPagesText(g->Slots[0], 0)}) {
        ASSERT_TRUE(whole);
        const JcampRead full(*whole);
        for (std::size_t length = 0; length < whole->size(); length += length < 1500 ? 7 : 1) {
            const JcampRead cut(std::string_view(*whole).substr(0, length));
            if (!cut.status) continue;
            const bool same = std::ranges::equal(full.set().spec.DataRe.all(), cut.set().spec.DataRe.all()) &&
                              std::ranges::equal(full.set().spec.DataIm.all(), cut.set().spec.DataIm.all());
            EXPECT_TRUE(same || !cut.set().Warnings.empty()) << "cut at " << length;
        }
    }
}

TEST(JcampWriter, WhatIsNoSpectrumIsRefused)
{
    TempFolder folder;
    const auto g = std::make_unique<GlobalBlock>();
    EXPECT_EQ(WriteDataDX(folder / "a.dx", *g, 0).error().code, ErrorCode::bad_value);
    Fill(*g, kShapes[0]);
    EXPECT_EQ(WriteDataDX(folder / "no/such/a.dx", *g, 0).error().where, "WriteDataDX/1DDRW");
    EXPECT_EQ(WriteDataDx2(folder / "a.dx", *g, 99).error().code, ErrorCode::bad_value);
    g->Slots[0].spec.DataRe[0][3] = NAN;
    g->Slots[0].spec.DataRe[0][4] = INFINITY;
    EXPECT_TRUE(WriteDataDX(folder / "a.dx", *g, 0));
    g->Slots[0].par.SMODE = 0;
    EXPECT_EQ(WriteDataDx2(folder / "b.dx", *g, 0).error().code, ErrorCode::bad_value);
    EXPECT_FALSE(std::filesystem::exists(folder / "b.dx"));
}

} // namespace
} // namespace nmr
