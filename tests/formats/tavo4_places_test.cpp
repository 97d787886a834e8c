// Where the writer lays things down, checked by a reader of its own: it knows nothing but numbers of
// bytes, as they stand in the description of the format, so that a table shared by writer and reader
// can't be wrong in both.

#include "core/numbers.h"
#include "formats/tavo4_fixture.h"

#include <cstring>

namespace nmr::test {
namespace {

/// The plain reading of a little-endian file.
struct Plain {
    const FileBytes& file;
    template <class T>
    T Get(std::size_t at) const
    {
        std::uint64_t bits = 0;
        for (std::size_t i = sizeof(T); i-- > 0;) bits = bits << 8 | std::to_integer<std::uint64_t>(file.at(at + i));
        T value;
        std::memcpy(&value, &bits, sizeof(T));
        return value;
    }
    std::string Text(std::size_t at, std::size_t width) const
    {
        std::string text(reinterpret_cast<const char*>(file.data()) + at, width);
        return text.substr(0, text.find('\0'));
    }
};

using Par = ParamBlock;

// A value that belongs to one place: two members that have changed places are found.
float F(int at)
{
    return static_cast<float>(at) + 0.25F;
}
double D(int at)
{
    return at + 0.125;
}
std::int16_t S(int at)
{
    return static_cast<std::int16_t>(-at);
}
std::int32_t L(int at)
{
    return at * 65537;
}
std::uint32_t R(int at)
{
    return 0xF0000000U + static_cast<std::uint32_t>(at);
}
std::string T(int at)
{
    return "t" + std::to_string(at);
}

struct TextPlace {
    int at;
    std::size_t width;
    std::string Par::*member;
};
const TextPlace kTexts[] = {
    {48, 32, &Par::Probe},         {80, 32, &Par::Instrument},   {112, 32, &Par::PulseProg},
    {144, 32, &Par::GradProg},     {176, 32, &Par::FilterType},  {208, 16, &Par::SampleMisc1},
    {224, 48, &Par::SampleMisc2},  {272, 32, &Par::ExpComment2}, {336, 32, &Par::IRTitle},
    {672, 8, &Par::OBNUC},         {680, 8, &Par::IRNUC},        {688, 8, &Par::TRNUC},
    {696, 16, &Par::SLVNT},        {712, 32, &Par::EXMOD},       {744, 256, &Par::EXPCM},
    {1000, 32, &Par::ProbeSerial}, {2064, 64, &Par::Operator},   {2128, 32, &Par::InstrumentID},
    {2160, 8, &Par::DataVersion},  {2176, 8, &Par::DTYPE},
};

struct FloatPlace {
    int at;
    float Par::*member;
};
const FloatPlace kFloats[] = {
    {372, &Par::IfGain},      {376, &Par::Limit164},    {380, &Par::SpinSet},    {384, &Par::CSPED},
    {388, &Par::TempSet},     {392, &Par::CTEMP},       {396, &Par::FlagP},      {420, &Par::FlagA},
    {424, &Par::FlagN},       {468, &Par::OBFRQ},       {472, &Par::OBSET},      {476, &Par::OBFIN},
    {480, &Par::OBST2},       {484, &Par::OBFN2},       {492, &Par::IRFRQ},      {496, &Par::IRSET},
    {500, &Par::IRFIN},       {504, &Par::IRST2},       {508, &Par::IRFN2},      {512, &Par::IRPHS},
    {528, &Par::TRFRQ},       {532, &Par::TRSET},       {536, &Par::TRFIN},      {540, &Par::TRST2},
    {544, &Par::TRFN2},       {548, &Par::TRPHS},       {624, &Par::TR},         {628, &Par::IWT},
    {632, &Par::DEADT},       {636, &Par::DELAY},       {640, &Par::FlagM},      {644, &Par::INTVL},
    {648, &Par::FILTR},       {660, &Par::ADBIT},       {1056, &Par::ACQTM},     {1060, &Par::PD},
    {1104, &Par::TempLimit1}, {1108, &Par::TempLimit2}, {1112, &Par::JCNST},     {1156, &Par::RefX},
    {1160, &Par::BF1},        {1180, &Par::WinStart3},  {1184, &Par::WinEnd3},   {1224, &Par::OBPHS},
    {1228, &Par::TrPulse},    {1236, &Par::DispLeft},   {1244, &Par::ProcLimit}, {1252, &Par::YFill},
    {1256, &Par::DispBase},   {1276, &Par::SMEXR},      {1284, &Par::YMag},      {1300, &Par::GF},
    {1304, &Par::BF2},        {1308, &Par::WinStart4},  {1312, &Par::WinStart1}, {1316, &Par::WinStart2},
    {1320, &Par::WinEnd4},    {1324, &Par::WinEnd2},
};

struct ShortPlace {
    int at;
    std::int16_t Par::*member;
};
const ShortPlace kShorts[] = {
    {368, &Par::Flag20},      {400, &Par::SpinFlag},    {412, &Par::ProbeRange}, {428, &Par::DataFormat},
    {460, &Par::FlagO},       {488, &Par::OBATN},       {516, &Par::IRATN},      {520, &Par::IRRPW},
    {524, &Par::IrrFlag},     {552, &Par::TRATN},       {556, &Par::TRRPW},      {560, &Par::TrFlag},
    {1188, &Par::PhaseWord6}, {1280, &Par::PhaseWord2}, {1344, &Par::AcqMode},   {1348, &Par::FFTMode},
};

struct LongPlace {
    int at;
    std::int32_t Par::*member;
};
const LongPlace kLongs[] = {
    {404, &Par::FlagB},  {408, &Par::FlagL},  {1040, &Par::TIMES},    {1044, &Par::SCANS},   {1048, &Par::DUMMY},
    {1052, &Par::TOSCN}, {1152, &Par::SMTMS}, {1248, &Par::ProcFlag}, {1352, &Par::RowBase}, {1384, &Par::RefState},
};

struct FloatRun {
    int at;
    std::array<float, 5> Par::*member;
};
const FloatRun kRuns[] = {{584, &Par::PS}, {604, &Par::Scan2}, {1064, &Par::PW}, {1084, &Par::PI}};

// Raw words: the array's element and its place. Flags C to K, then the phase words 4, 5 and 7 to 13.
struct RawPlace {
    int at;
    std::size_t index;
};
const RawPlace kFlagWords[] = {{416, 0}, {444, 7}, {448, 1}};
const RawPlace kFlagShorts[] = {{432, 4}, {436, 8}, {440, 6}, {452, 2}, {456, 3}, {464, 5}};
const RawPlace kPhaseWords[] = {{1196, 0}, {1192, 1}, {1360, 2}, {1356, 3}, {1372, 4}, {1368, 5}, {1364, 6}};

void FillParameters(ParamBlock& par)
{
    for (const TextPlace& p : kTexts) par.*p.member = T(p.at);
    for (const FloatPlace& p : kFloats) par.*p.member = F(p.at);
    for (const ShortPlace& p : kShorts) par.*p.member = S(p.at);
    for (const LongPlace& p : kLongs) par.*p.member = L(p.at);
    for (const FloatRun& p : kRuns)
        for (std::size_t i = 0; i < 5; ++i) (par.*p.member)[i] = F(p.at + 4 * static_cast<int>(i));
    for (const RawPlace& p : kFlagWords) par.FlagCtoK[p.index] = R(p.at);
    for (const RawPlace& p : kFlagShorts) par.FlagCtoK[p.index] = 0xFFFF & R(p.at);
    for (const RawPlace& p : kPhaseWords) par.PhaseWord7to13[p.index] = R(p.at);
    par.PhaseWord4to5 = {R(1260), R(1272)};
    for (std::size_t i = 0; i < 5; ++i) par.LOOP[i] = L(564 + 4 * static_cast<int>(i));
    for (std::size_t i = 0; i < 4; ++i) par.Trap[i] = F(1164 + 4 * static_cast<int>(i));
    par.WinFlags = {9, L(1328), L(1332), L(1336), L(1340)};
    par.SpanOrg = D(1216);
    par.PhaseWord3 = D(1264);
    par.TimeStamp2 = 0x1122334455667788U;
    par.Span2 = 0xAABBCCDD12345678U;
    par.RGAIN = 40000;
}

struct Laid {
    std::unique_ptr<GlobalBlock> g = NewBlock();
    FileBytes file;
    Laid()
    {
        FillSet(*g, 0);
        FillParameters(g->Slots[0].par);
        FillPoints(*g, 2, 4);
        FillPoints(*g, 20, 4);
        file = Encoded(*g);
    }
};

constexpr std::size_t kBlock = 1328; ///< behind the label of the first block
constexpr std::size_t kParameters = kBlock + 768;

TEST(Tavo4Places, HeadAndAddressTable)
{
    const Laid laid;
    const Plain file{laid.file};
    EXPECT_EQ(file.Text(0, 16), "TA NMR Ver.4.01");
    EXPECT_EQ(file.Text(16, 255), kTavo4Path);
    EXPECT_EQ(file.Text(496, 16), "## ADDRESS");
    EXPECT_EQ(file.Get<std::int32_t>(512), 1280);
    EXPECT_LT(file.Get<std::int32_t>(516), 19) << "no two-dimensional data";
    EXPECT_EQ(file.Text(1280, 16), "## 2D Data");
    struct Block {
        std::size_t entry;
        const char* label;
        std::size_t points;
    };
    for (const Block& block :
         {Block{520, "## 1D Data 00", 32}, Block{536, "## 1D Data 02", 8}, Block{832, "## 1D Data 20", 8}}) {
        SCOPED_TRACE(block.label);
        const auto at = static_cast<std::size_t>(file.Get<std::int32_t>(block.entry));
        const auto length = static_cast<std::size_t>(file.Get<std::int32_t>(block.entry + 4));
        EXPECT_EQ(at % 16, 0U);
        EXPECT_EQ(file.Text(at, 16), block.label);
        EXPECT_EQ(file.Text(at + 16, 16), "1D NORM NORM   ");
        EXPECT_EQ(file.Text(at + length, 16), "%% END") << "the last label of the block";
    }
    EXPECT_EQ(file.Get<std::int32_t>(520), 1312);
    for (const std::size_t unused : {528U, 544U, 672U, 680U, 840U, 1088U})
        EXPECT_EQ(file.Get<std::int64_t>(unused), 0) << unused;
}

TEST(Tavo4Places, BlockHeadAndSections)
{
    const Laid laid;
    const Plain file{laid.file};
    EXPECT_EQ(file.Text(kBlock + 16, 16), "%% ADDRESS");
    EXPECT_EQ(file.Get<std::int32_t>(kBlock + 32), static_cast<std::int32_t>(kBlock) + 256);
    EXPECT_EQ(file.Get<std::int32_t>(kBlock + 36), 256);
    EXPECT_EQ(file.Text(kBlock + 240, 16), "%% ORG FILE");
    EXPECT_EQ(file.Text(kBlock + 256, 255), "/data/raw/1/fid");
    struct Place {
        std::size_t entry;
        const char* label;
        int length;
    };
    const Place kSections[] = {
        {40, "%% PARAMETER", 2560},        {48, "%% Data", 16 + 8 * 8 * 2},    {56, "%% COMMENT", 16 + 10 + 11 + 12},
        {168, "%% COMMENT RTF", 16 + 12},  {176, "%% SIM COMMENT", 32},        {152, "%% SAMPLE ID", 16 + 9},
        {192, "%% SAMPLEID NEW", 16 + 22}, {64, "%% INTEGRAL", 40 + 48},       {72, "%% PEAK PICK", 40 + 48},
        {80, "%% MULTIVIEW", 40 + 1024},   {88, "%% SIMULATE", 272 + 40},      {96, "%% PRINT SET", 272},
        {104, "%% ARRAY", 112 + 16 + 16},  {112, "%% HISTORY", 96 + 192},      {120, "%% FONTS", 384},
        {128, "%% FILENAME", 272},         {144, "%% REGION COLOR", 32 + 656}, {160, "%% X LABELS", 208},
        {184, "%% X LABELS NEW", 208},
    };
    std::size_t before = 0;
    for (const Place& place : kSections) {
        SCOPED_TRACE(place.label);
        const auto at = static_cast<std::size_t>(file.Get<std::int32_t>(kBlock + place.entry));
        EXPECT_EQ(file.Text(at, 16), place.label);
        EXPECT_EQ(at % 16, 0U);
        EXPECT_GT(at, before) << "in the order of the file";
        EXPECT_EQ(file.Get<std::int32_t>(kBlock + place.entry + 4), place.length);
        before = at;
    }
    EXPECT_EQ(file.Get<std::int32_t>(kBlock + 40), static_cast<std::int32_t>(kParameters));
}

TEST(Tavo4Places, Parameters)
{
    const Laid laid;
    const Plain file{laid.file};
    const auto at = [](int offset) { return kParameters + static_cast<std::size_t>(offset); };
    for (const TextPlace& p : kTexts) EXPECT_EQ(file.Text(at(p.at), p.width), T(p.at));
    for (const FloatPlace& p : kFloats) EXPECT_EQ(file.Get<float>(at(p.at)), F(p.at)) << p.at;
    for (const ShortPlace& p : kShorts) EXPECT_EQ(file.Get<std::int32_t>(at(p.at)), 0xFFFF & S(p.at)) << p.at;
    for (const LongPlace& p : kLongs) EXPECT_EQ(file.Get<std::int32_t>(at(p.at)), L(p.at)) << p.at;
    for (const FloatRun& p : kRuns)
        for (int i = 0; i < 20; i += 4) EXPECT_EQ(file.Get<float>(at(p.at + i)), F(p.at + i)) << p.at + i;
    for (const RawPlace& p : kFlagWords) EXPECT_EQ(file.Get<std::uint32_t>(at(p.at)), R(p.at)) << p.at;
    for (const RawPlace& p : kFlagShorts) EXPECT_EQ(file.Get<std::uint32_t>(at(p.at)), 0xFFFF & R(p.at)) << p.at;
    for (const RawPlace& p : kPhaseWords) EXPECT_EQ(file.Get<std::uint32_t>(at(p.at)), R(p.at)) << p.at;
    for (const int p : {1260, 1272}) EXPECT_EQ(file.Get<std::uint32_t>(at(p)), R(p)) << p;
    for (int p = 564; p < 584; p += 4) EXPECT_EQ(file.Get<std::int32_t>(at(p)), L(p)) << p;
    for (int p = 1164; p < 1180; p += 4) EXPECT_EQ(file.Get<float>(at(p)), F(p)) << p;
    for (int p = 1328; p < 1344; p += 4) EXPECT_EQ(file.Get<std::int32_t>(at(p)), L(p)) << p;
    EXPECT_EQ(file.Text(at(16), 32), "14/Mar/2024 15:09:26");
    EXPECT_EQ(file.Text(at(304), 32), "14/Mar/2024 15:09:26");
    EXPECT_EQ(file.Get<std::int32_t>(at(652)), 1) << "a spectrum";
    EXPECT_EQ(file.Get<std::int32_t>(at(656)), -1) << "a gain beyond 16 bits";
    EXPECT_EQ(file.Get<std::int32_t>(at(1132)), 1);
    EXPECT_EQ(file.Get<std::int32_t>(at(1136)), 8);
    EXPECT_EQ(file.Get<float>(at(1140)), 87.5F);
    EXPECT_EQ(file.Get<double>(at(1144)), 87.5 / 8);
    EXPECT_EQ(file.Get<double>(at(1200)), 400.002);
    EXPECT_EQ(file.Get<double>(at(1208)), 400.0);
    EXPECT_EQ(file.Get<double>(at(1216)), D(1216));
    EXPECT_EQ(file.Get<std::uint32_t>(at(1232)), 0x12345678U) << "the upper half is another value's";
    EXPECT_EQ(file.Get<std::int32_t>(at(1240)), 2);
    EXPECT_EQ(file.Get<double>(at(1264)), D(1264));
    EXPECT_EQ(file.Get<double>(at(1288)), 0.03125);
    EXPECT_EQ(file.Get<float>(at(1296)), -1.5F);
    EXPECT_EQ(file.Get<std::uint64_t>(at(1376)), 0x1122334455667788U);
    for (int i = 0; i < 32; ++i) {
        const float n = static_cast<float>(i);
        EXPECT_EQ(file.Get<float>(at(1552 + 4 * i)), 200 + n);
        EXPECT_EQ(file.Get<float>(at(1680 + 4 * i)), 100 + n);
        EXPECT_EQ(file.Get<float>(at(1808 + 4 * i)), 400 + n);
        EXPECT_EQ(file.Get<float>(at(1936 + 4 * i)), 300 + n);
    }
}

/// Start of a section of the first block, by its table entry.
std::size_t At(const Laid& laid, std::size_t entry)
{
    return static_cast<std::size_t>(Plain{laid.file}.Get<std::int32_t>(kBlock + entry));
}

void ExpectFont(const Plain& file, std::size_t at, int number, std::size_t name, std::size_t color)
{
    SCOPED_TRACE(number);
    EXPECT_EQ(file.Get<float>(at), 8.5F + static_cast<float>(number));
    EXPECT_EQ(file.Get<std::int16_t>(at + 4), -1);
    EXPECT_EQ(file.Get<std::int16_t>(at + 6), number % 2);
    EXPECT_EQ(file.Get<std::int16_t>(at + 8), 1);
    EXPECT_EQ(file.Get<std::int16_t>(at + 10), -1);
    EXPECT_EQ(file.Get<std::int32_t>(at + color), 0x00102030 + number);
    EXPECT_EQ(file.Text(at + name, 32), "Font " + std::to_string(number));
}

TEST(Tavo4Places, PointsListsAndTexts)
{
    const Laid laid;
    const Plain file{laid.file};
    const std::size_t data = At(laid, 48) + 16;
    EXPECT_EQ(file.Get<float>(data + 4 * 3), 3.5F);
    EXPECT_EQ(file.Get<float>(data + 4 * (8 + 3)), 103.5F) << "the second row follows the first";
    EXPECT_EQ(file.Get<float>(data + 4 * (16 + 3)), -3.5F / 3.0F) << "imaginary parts follow all real parts";
    // Japanese text in its own code page.
    EXPECT_EQ(file.Text(At(laid, 56) + 16, 10), "\x83\x47\x83\x5E\x83\x6D\x81\x5B\x83\x8B");
    EXPECT_EQ(file.Text(At(laid, 152) + 16, 9), "S-1 CDCl3");
    EXPECT_EQ(file.Text(At(laid, 192) + 16, 22), "\\< S-1 CDCl\\-1 3\\-0 \\>");
    EXPECT_EQ(file.Text(At(laid, 160) + 16, 64), "ppm");
    EXPECT_EQ(file.Text(At(laid, 184) + 16, 64), "\\< \\b1 p\\b0 pm\\>");
    EXPECT_EQ(file.Text(At(laid, 160) + 144, 64), "kHz");
    const std::size_t integral = At(laid, 64);
    EXPECT_EQ(file.Get<std::int32_t>(integral + 16), 2);
    EXPECT_EQ(file.Get<std::int16_t>(integral + 20), 1);
    EXPECT_EQ(file.Get<std::int16_t>(integral + 24), 2);
    EXPECT_EQ(file.Get<std::int16_t>(integral + 26), 4);
    EXPECT_EQ(file.Get<float>(integral + 28), 3.0F);
    EXPECT_EQ(file.Get<float>(integral + 32), F(1252)) << "the display scale once more";
    EXPECT_EQ(file.Get<float>(integral + 36), 0.75F);
    EXPECT_EQ(file.Get<float>(integral + 64), 1.25F);
    EXPECT_EQ(file.Get<float>(integral + 68), 1.5F);
    EXPECT_EQ(file.Get<float>(integral + 72), 0.0625F);
    EXPECT_EQ(file.Get<std::int32_t>(integral + 76), 40);
    EXPECT_EQ(file.Get<float>(integral + 80), 48.0F);
    const std::size_t peak = At(laid, 72);
    EXPECT_EQ(file.Get<std::int32_t>(peak + 16), 2);
    EXPECT_EQ(file.Get<float>(peak + 24), 0.02F);
    EXPECT_EQ(file.Get<float>(peak + 28), 0.03F);
    EXPECT_EQ(file.Get<float>(peak + 32), 6.0F);
    EXPECT_EQ(file.Get<std::int16_t>(peak + 36), 1);
    EXPECT_EQ(file.Get<std::int16_t>(peak + 38), 3);
    EXPECT_EQ(file.Get<float>(peak + 64), 16777216.0F);
    EXPECT_EQ(file.Get<float>(peak + 68), 3.5F);
    EXPECT_EQ(file.Get<float>(peak + 72), 4.5F);
    EXPECT_EQ(file.Get<std::int16_t>(peak + 76), -2);
    EXPECT_EQ(file.Get<double>(peak + 80), -7.25);
}

TEST(Tavo4Places, ViewsDisplayRowsAndHistory)
{
    const Laid laid;
    const Plain file{laid.file};
    const std::size_t view = At(laid, 80);
    EXPECT_EQ(file.Get<std::int32_t>(view + 16), 2);
    for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(file.Get<float>(view + 40 + 4 * i), 1.5F + static_cast<float>(i));
    for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(file.Get<std::int16_t>(view + 80 + 4 * i), 11 + static_cast<int>(i));
    EXPECT_EQ(file.Get<std::int16_t>(view + 152), 23);
    EXPECT_EQ(file.Get<float>(view + 164), 107.5F);
    EXPECT_EQ(file.Get<std::int16_t>(view + 184), 28);
    for (int i = 0; i < 4; ++i) ExpectFont(file, view + 248 + 48 * static_cast<std::size_t>(i), 4 + i, 12, 44);
    EXPECT_EQ(file.Get<float>(view + 512 + 40), -1.5F);
    const std::size_t fonts = At(laid, 120);
    for (int i = 0; i < 3; ++i) ExpectFont(file, fonts + 16 + 48 * static_cast<std::size_t>(i), 1 + i, 16, 12);
    const std::size_t fit = At(laid, 88);
    EXPECT_EQ(file.Get<std::int16_t>(fit + 16), 1);
    for (std::size_t i = 1; i < 5; ++i) EXPECT_EQ(file.Get<std::int32_t>(fit + 20 + 4 * i), 10 + static_cast<int>(i));
    EXPECT_EQ(file.Get<std::int32_t>(fit + 20), 2);
    EXPECT_EQ(file.Get<float>(fit + 292), 5.0F);
    EXPECT_EQ(file.Get<float>(fit + 304), 0.5F);
    const std::size_t print = At(laid, 96);
    const std::size_t kWords[] = {16, 20, 24, 28, 32, 36, 40, 44, 48, 60, 64, 68, 72, 76, 80, 84, 96};
    int word = 0;
    for (const std::size_t offset : kWords) EXPECT_EQ(file.Get<std::int32_t>(print + offset), ++word);
    EXPECT_EQ(file.Get<float>(print + 52), 2.0F) << "top margin";
    EXPECT_EQ(file.Get<float>(print + 56), 0.5F) << "left margin";
    EXPECT_EQ(file.Get<float>(print + 92), 1.5F);
    EXPECT_EQ(file.Get<std::int16_t>(print + 100), -70);
    EXPECT_EQ(file.Get<std::int16_t>(print + 104), 3);
    EXPECT_EQ(file.Get<std::uint32_t>(print + 108 + 4 * 39), 0xC0000027U);
    const std::size_t rows = At(laid, 104);
    EXPECT_EQ(file.Get<std::int16_t>(rows + 16), 2);
    EXPECT_EQ(file.Get<float>(rows + 20), 0.5F);
    EXPECT_EQ(file.Get<float>(rows + 24), 2.5F);
    EXPECT_EQ(file.Get<std::uint32_t>(rows + 28), 0xDEADBEEFU);
    EXPECT_EQ(file.Text(rows + 32, 32), "delay");
    EXPECT_EQ(file.Text(rows + 64, 32), "s");
    EXPECT_EQ(file.Get<std::int32_t>(rows + 96), 2);
    EXPECT_EQ(file.Get<float>(rows + 108), 11.0F);
    EXPECT_EQ(file.Get<float>(rows + 112), 2.0F);
    EXPECT_EQ(file.Text(rows + 128, 16), "t1");
    const auto in_file = static_cast<std::size_t>(file.Get<std::int32_t>(808));
    for (const std::size_t history : {At(laid, 112), in_file}) {
        EXPECT_EQ(file.Text(history + 16, 32), "Yamada");
        EXPECT_EQ(file.Text(history + 48, 32), "head");
        EXPECT_EQ(file.Get<std::int32_t>(history + 80), 3);
        EXPECT_EQ(file.Text(history + 96 + 128, 32), "Sato");
        EXPECT_EQ(file.Text(history + 128 + 128, 32), "2024-05-02 Save");
    }
    const std::size_t regions = At(laid, 144);
    EXPECT_EQ(file.Get<float>(regions + 32), 1.5F);
    EXPECT_EQ(file.Get<std::int32_t>(regions + 40), 255);
    EXPECT_EQ(file.Get<std::int32_t>(regions + 56), -1) << "a region that is not in use has no colour";
    EXPECT_EQ(file.Get<std::int32_t>(regions + 32 + 640 + 8), 65280);
}

} // namespace
} // namespace nmr::test
