// The grammar, the records and the number types, on data sets made here; bad input.

#include "formats/bruker_fixture.h"

#include "core/dates.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace nmr {
namespace {

using namespace test;

TEST(BrukerParameters, ReadsEveryFormOfARecord)
{
    const BrukerParameters p = Parsed("##TITLE= Parameter file\r\n##ORIGIN= UXNMR, Bruker\r\n"
                                      "$$ Mon ##$TD= 1\n"
                                      "##$SW= 20.5\n##$SW_h= 8223.68421052631  \n##$RG= 1.5e3\n"
                                      "##$PROBHD= <5 mm PABBO\n Z104450>\n##$SOLVENT= <>\n##$LOCKED= yes\n"
                                      "##$D= (0..5)\n0 1.5\n2 3\n4 5\n##$QS= (0..2)83 84 85 \n"
                                      "##$SPNAM= (0..1)\n<> <Gaus1_270.1000>\n$$ comment\n##$TD= 65536\n##END=\n"
                                      "##$TD= 4\n");
    EXPECT_EQ(p.origin(), "UXNMR, Bruker");
    EXPECT_TRUE(p.IsVendorFile());
    EXPECT_TRUE(p.ended());
    EXPECT_EQ(p.Number("SW"), 20.5);
    EXPECT_EQ(p.Number("SW_h"), 8223.68421052631);
    EXPECT_EQ(p.Number("SW_p"), std::nullopt);
    EXPECT_EQ(p.Number("sw_H"), 8223.68421052631) << "converters change the case";
    EXPECT_EQ(p.Text("PROBHD"), "5 mm PABBO  Z104450");
    EXPECT_EQ(p.Text("SOLVENT"), "");
    EXPECT_EQ(p.Text("LOCKED"), "yes");
    EXPECT_EQ(p.Numbers("D"), (std::vector<double>{0, 1.5, 2, 3, 4, 5}));
    EXPECT_EQ(p.Numbers("QS"), (std::vector<double>{83, 84, 85}));
    EXPECT_EQ(p.Number("TD"), 65536) << "comments don't count, nor what follows the end";
    EXPECT_EQ(p.Text("NUC1"), std::nullopt);
}

TEST(BrukerParameters, RefusesLinesThatAreNoRecords)
{
    for (const std::string bad : {"##$TD\n##$NS= 1\n", "##\n", "##= 3\n", "##$PROBHD= <5 mm\n##$TD= 4\n##END=\n",
                                  "##$PROBHD= <never closed", "##$PROBHD= <never\n\n\nclosed\n"}) {
        SCOPED_TRACE(bad);
        const auto read = BrukerParameters::Parse(std::as_bytes(std::span(bad)));
        ASSERT_FALSE(read);
        EXPECT_EQ(read.error().code, ErrorCode::bad_format);
    }
}

TEST(BrukerGroupDelay, FollowsGrpdlyThenTheTableOfFirmwareAndDecimation)
{
    struct Case {
        const char* name;
        const char* records;
        double points; ///< as published, to 5 digits
    };
    const Case cases[] = {
        {"given", "##$DIGMOD= 1\n##$DSPFVS= 20\n##$DECIM= 2080\n##$GRPDLY= 67.9842071533203\n", 67.9842071533203},
        {"given as none", "##$DIGMOD= 1\n##$DSPFVS= 20\n##$DECIM= 1\n##$GRPDLY= 0\n", 0},
        {"analogue, though a delay stands there", "##$DIGMOD= 0\n##$DSPFVS= -1\n##$GRPDLY= 67.99\n", 0},
        {"-1 is not given", "##$DIGMOD= 1\n##$DSPFVS= 10\n##$DECIM= 2\n##$GRPDLY= -1\n", 44.75},
        {"10/16", "##$DSPFVS= 10\n##$DECIM= 16\n", 69.53125},
        {"10/24", "##$DSPFVS= 10\n##$DECIM= 24\n", 61.02083},
        {"10/6", "##$DSPFVS= 10\n##$DECIM= 6\n", 59.08333},
        {"10/2048", "##$DSPFVS= 10\n##$DECIM= 2048\n", 70.49243},
        {"11/32", "##$DSPFVS= 11\n##$DECIM= 32\n", 72.75},
        {"12/32", "##$DSPFVS= 12\n##$DECIM= 32\n", 72.125},
        {"12/12, exact and not rounded", "##$DSPFVS= 12\n##$DECIM= 12.0\n", 69.5},
        {"13/3", "##$DSPFVS= 13\n##$DECIM= 3\n", 2.83333},
        {"13 ends at 96", "##$DSPFVS= 13\n##$DECIM= 128\n", 0},
        {"unknown rate", "##$DSPFVS= 10\n##$DECIM= 5\n", 0},
        {"no filter", "##$DSPFVS= 0\n##$DECIM= 16\n", 0},
        {"longer than the FID", "##$TD= 100\n##$GRPDLY= 5000\n", 0},
        {"nothing said", "", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(BrukerGroupDelay(Parsed(c.records)), c.points, 5.1e-6);
    }
    EXPECT_EQ(BrukerGroupDelay(Parsed("##$DSPFVS= 10\n##$DECIM= 6\n")), 709.0 / 12.0) << "the fraction itself";
}

TEST(BrukerRecords, GoToTheirFields)
{
    ParamBlock par;
    const BrukerParameters p =
        Parsed(Acqus("##$PULPROG= <zg30>\n##$PROBHD= <5 mm>\n##$GRDPROG= <g>\n##$INSTRUM= <drx700>\n##$DE= 6.5\n"
                     "##$DS= 4\n##$FW= 125000\n##$RO= 20\n##$TE= 298\n##$RG= 77.66\n##$NS= 32\n##$SOLVENT= <CDCl3>\n"
                     "##$P= (0..6)\n1 2 3 4 5 6 7\n##$D= (0..6)\n9 0.5 0.25 3 4 5 6\n##$CNST= (0..3)\n1 1 145 1\n"
                     "##$DECNUC= <13C>\n##$DATE= 1506558931\n##$AQ_mod= 193\n"));
    ApplyBrukerRecords(p, BrukerUse::fid, NuclearTable::BuiltIn(), par);
    EXPECT_EQ(par.PulseProg + par.EXMOD + par.Probe + par.GradProg, "zg30zg305 mmg");
    EXPECT_EQ(par.Instrument + par.SLVNT + par.OBNUC + par.IRNUC, "drx700CDCl31H13C");
    EXPECT_FLOAT_EQ(par.DEADT, 6.5F);
    EXPECT_EQ(par.DUMMY, 4);
    EXPECT_EQ(par.FILTR, 125000);
    EXPECT_EQ(par.CSPED, 20);
    EXPECT_FLOAT_EQ(par.CTEMP, 24.85F);
    EXPECT_FLOAT_EQ(par.TempSet, 24.85F);
    EXPECT_EQ(par.RGAIN, 78);
    EXPECT_EQ(par.SCANS + par.TIMES, 64);
    EXPECT_EQ(par.PW, (std::array<float, 5>{2, 3, 4, 5, 6}));
    EXPECT_EQ(par.PI, (std::array<float, 5>{0.5F, 0.25F, 3, 4, 5}));
    EXPECT_EQ(par.PD, 0.5F);
    EXPECT_EQ(par.JCNST, 145);
    EXPECT_EQ(par.ObsCenter, 400.132);
    EXPECT_EQ(par.OBFRQ0PPM, 400.13);
    EXPECT_EQ(par.AcqMode, 2) << "the low two bits of AQ_mod";
    // 1506558931 s = 28 Sep 2017, 00:35:31 UTC
    EXPECT_EQ(par.DateSerial, 43006);
    EXPECT_NEAR(par.TimeOfDay, (35 * 60 + 31) / 86400.0, 1e-7);
    EXPECT_EQ(par.DATIM, "28/Sep/2017 00:35:31");
}

TEST(BrukerRecords, ObservedNucleus)
{
    struct Case {
        const char* name;
        const char* records;
        const char* nucleus;
    };
    const Case cases[] = {
        {"NUC1", "##$NUC1= <13C>\n##$NUCLEUS= <1H>\n", "13C"},
        {"off falls back", "##$NUC1= <off>\n##$NUCLEUS= <31P>\n", "31P"},
        {"bare word falls back", "##$NUC1=off\n##$NUCLEUS= <19F>\n", "19F"},
        {"unknown falls back", "##$NUC1= <Zz>\n##$NUCLEUS= <13C>\n", "13C"},
        {"only the frequency of protons", "##$NUC1= <off>\n##$SFO1= 400.13\n", "1H"},
        {"nothing", "##$SFO1= 100.6\n", "??"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ParamBlock par;
        ApplyBrukerRecords(Parsed(c.records), BrukerUse::fid, NuclearTable::BuiltIn(), par);
        EXPECT_EQ(par.OBNUC, c.nucleus);
        EXPECT_EQ(par.Instrument, "BRUKER");
    }
}

/// Signal that fits an int32: real and imaginary differ, and no value repeats.
std::vector<double> Signal(std::size_t values)
{
    std::vector<double> signal(values);
    for (std::size_t i = 0; i < values; ++i)
        signal[i] =
            std::round(100000.0 * std::sin(0.37 * static_cast<double>(i)) / (1.0 + 0.01 * static_cast<double>(i)));
    return signal;
}

TEST(BrukerFid, EveryNumberTypeAndByteOrderGivesTheSameFid)
{
    struct Case {
        const char* name;
        const char* records;
        std::string (*encode)(const std::vector<double>&, bool);
        bool big_endian;
        std::size_t padding;
    };
    const Case cases[] = {
        {"i32", "##$DTYPA= 0\n##$BYTORDA= 0\n", Encode<std::int32_t>, false, 0},
        {"i32 big-endian", "##$DTYPA= 0\n##$BYTORDA= 1\n", Encode<std::int32_t>, true, 0},
        {"old file without a type", "##$BYTORDA= 1\n", Encode<std::int32_t>, true, 0},
        {"any other order is little-endian", "##$BYTORDA= 2\n", Encode<std::int32_t>, false, 0},
        {"padded", "##$DTYPA= 0\n", Encode<std::int32_t>, false, 224},
        {"f32", "##$DTYPA= 1\n", Encode<float>, false, 0},
        {"f32 big-endian", "##$DTYPA= 1\n##$BYTORDA= 1\n", Encode<float>, true, 0},
        {"f64", "##$DTYPA= 2\n", Encode<double>, false, 0},
        {"f64 by its size alone", "##$DTYPA= 0\n##$BYTORDA= 1\n", Encode<double>, true, 0},
        {"f64 padded", "##$DTYPA= 2\n", Encode<double>, false, 224},
    };
    const auto signal = Signal(2 * 400);
    const double largest = *std::ranges::max_element(signal, {}, [](double v) { return std::fabs(v); });
    double mean[2] = {0, 0}; // of the last 160 of 400 points
    for (std::size_t i = 240; i < 400; ++i)
        for (std::size_t part : {0U, 1U}) mean[part] += signal[2 * i + part] / 160;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteText(folder / "acqus", Acqus(std::string(c.records) + "##$TD= 800\n"));
        WriteText(folder / "fid", c.encode(signal, c.big_endian) + std::string(c.padding, '\x55'));
        const BrukerRead read(folder / "fid", kFolderFid);
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_EQ(read.par().FIDPoints, 400);
        ASSERT_EQ(read.par().POINT, 512);
        EXPECT_EQ(read.par().SMODE, 0);
        EXPECT_EQ(read.par().DTYPE, "BRU1");
        EXPECT_EQ(read.par().FREQU, 8000);
        EXPECT_EQ(read.par().FileRefMHz, 400.13) << "BF1 when there is no procs";
        EXPECT_EQ(read.g->DataScale, 0.1F);
        EXPECT_TRUE(read.set().Warnings.empty()) << read.set().Warnings.front();
        for (std::size_t i = 0; i < 400; ++i) {
            ASSERT_NEAR(read.set().spec.DataRe[0][i], (signal[2 * i] - mean[0]) / std::fabs(largest), 1e-7) << i;
            ASSERT_NEAR(read.set().spec.DataIm[0][i], (signal[2 * i + 1] - mean[1]) / std::fabs(largest), 1e-7) << i;
        }
        for (std::size_t i = 400; i < 512; ++i) ASSERT_EQ(read.set().spec.DataRe[0][i], 0) << "padding stays 0";
    }
}

TEST(BrukerFid, TheNumberTypeIsAskedForWhereTheSettingsWantItAndTheLengthDoesNotTell)
{
    struct Case {
        const char* name;
        const char* answer; ///< nullptr: not asked
        std::string (*encode)(const std::vector<double>&, bool);
        int setting;
    };
    const Case cases[] = {
        {"not wanted", nullptr, Encode<std::int32_t>, 0}, {"integers", "LONG", Encode<std::int32_t>, 1},
        {"floats", "SINGLE", Encode<float>, 1},           {"doubles, by the length", nullptr, Encode<double>, 1},
        {"no answer", "CANCEL", Encode<std::int32_t>, 1},
    };
    const auto signal = Signal(64);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteText(folder / "acqus", Acqus("##$DTYPA= 0\n##$TD= 64\n"));
        WriteText(folder / "fid", c.encode(signal, false));
        const auto g = std::make_unique<GlobalBlock>();
        g->settings.ask_data_type = c.setting;
        ScriptedAsker asker;
        if (c.answer != nullptr) asker.Expect({FormAnswer{c.answer, {}}});
        const FileType type = TypeOf(folder / "fid", kFolderFid);
        ASSERT_TRUE(ReadBruker({*g, asker, type, 0}));
        EXPECT_EQ(asker.forms.size(), c.answer == nullptr ? 0U : 1U);
        const auto re = g->Slots[0].spec.DataRe[0];
        const double scale = (re[1] - re[0]) / (signal[2] - signal[0]);
        for (std::size_t i = 2; i < 32; ++i) ASSERT_NEAR(re[i] - re[0], scale * (signal[2 * i] - signal[0]), 1e-6) << i;
    }
}

TEST(BrukerFid, ReferenceSenseAndTitleComeFromTheProcessingFolder)
{
    const TempFolder folder;
    const std::string fid = Encode<std::int32_t>(Signal(32), false);
    WriteText(folder / "plain/acqus", Acqus("##$TD= 32\n"));
    WriteText(folder / "plain/fid", fid);
    WriteText(folder / "turned/ACQUS", Acqus("##$TD= 32\n")); // names in any case
    WriteText(folder / "turned/Fid", fid);
    WriteText(folder / "turned/pdata/notes/procs", Procs("##$SF= 1\n"));
    WriteText(folder / "turned/pdata/12/procs", Procs("##$SF= 2\n"));
    WriteText(folder / "turned/pdata/7/procs", kOrigin + "##$SF= 400.13001\n##$REVERSE= yes\n##END=\n");
    WriteText(folder / "turned/pdata/7/title", "\r\nsucrose 10 mM\r\nsecond line\r\n");
    const BrukerRead plain(folder / "plain/fid", kFolderFid), turned(folder / "turned/Fid", kFolderFid);
    ASSERT_TRUE(plain.status && turned.status);
    EXPECT_EQ(turned.par().FileRefMHz, 400.13001);
    EXPECT_EQ(turned.par().COMNT, "sucrose 10 mM");
    EXPECT_EQ(turned.par().ExpTitle, "sucrose 10 mM");
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(turned.set().spec.DataRe[0][i], plain.set().spec.DataRe[0][i]);
        EXPECT_EQ(turned.set().spec.DataIm[0][i], -plain.set().spec.DataIm[0][i]);
    }
}

TEST(BrukerFid, OneChannelDataHaveTwiceThePointsAndTheWidth)
{
    const TempFolder folder;
    WriteText(folder / "acqus", Acqus("##$TD= 32\n##$AQ_mod= 0\n"));
    WriteText(folder / "fid", Encode<std::int32_t>(Signal(32), false));
    const BrukerRead read(folder / "fid", kFolderFid);
    ASSERT_TRUE(read.status);
    EXPECT_EQ(read.par().FIDPoints, 32);
    EXPECT_EQ(read.par().FREQU, 16000);
    EXPECT_EQ(read.set().Warnings.size(), 1U);
    EXPECT_TRUE(std::ranges::all_of(read.set().spec.DataIm[0], [](float v) { return v == 0; }));
    EXPECT_NE(read.set().spec.DataRe[0][31], 0);
}

TEST(BrukerFid, NoCutOfAGoodFileIsTakenForAWholeOne)
{
    const TempFolder folder;
    const std::string whole = Encode<std::int32_t>(Signal(64), false);
    WriteText(folder / "acqus", Acqus("##$TD= 64\n"));
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        WriteText(folder / "fid", whole.substr(0, size));
        const BrukerRead read(folder / "fid", kFolderFid);
        if (size < 4) {
            ASSERT_FALSE(read.status);
            EXPECT_EQ(read.status.error().code, ErrorCode::truncated);
            continue;
        }
        ASSERT_TRUE(read.status);
        EXPECT_EQ(read.set().Warnings.empty(), size == whole.size());
        EXPECT_EQ(read.par().FIDPoints, 32);
        for (std::size_t i = size / 8; i < 32; ++i) ASSERT_EQ(read.set().spec.DataRe[0][i], 0);
    }
}

TEST(BrukerFid, DamagedValuesReadAsZeroAndAreCounted)
{
    struct Case {
        const char* name;
        double value;
        bool damaged;
    };
    const Case cases[] = {
        {"no number", NAN, true},     {"infinite", -HUGE_VAL, true},         {"beyond every instrument", 1e300, true},
        {"the largest", 1e30, false}, {"without an inverse", 4e-320, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteText(folder / "acqus", kOrigin + "##$SFO1= 400.132\n##$SW_h= 8000\n##$TD= 16\n");
        std::vector<double> values(16, 0.0);
        values[3] = c.value;
        WriteText(folder / "fid", Encode<double>(values, false));
        const BrukerRead read(folder / "fid", kFolderFid);
        ASSERT_TRUE(read.status);
        const auto counted = [](const std::string& warning) { return warning.starts_with("1 values of fid are no "); };
        EXPECT_EQ(std::ranges::any_of(read.set().Warnings, counted), c.damaged);
        EXPECT_EQ(read.set().spec.DataIm[0][1], c.damaged ? 0 : 1);
    }
}

TEST(BrukerFid, BadInputIsRefusedWithItsReason)
{
    struct Case {
        const char* name;
        std::string acqus;
        ErrorCode expected;
        std::string names{}; ///< the parameter that the reason begins with
    };
    const std::string head = kOrigin + "##$SFO1= 400.13\n##$SW_h= 8000\n";
    const Case cases[] = {
        {"no origin", "##$SFO1= 400.13\n##$SW_h= 8000\n##$TD= 64\n", ErrorCode::bad_format},
        {"another vendor", "##ORIGIN= Acme\n##$SFO1= 400.13\n##$SW_h= 8000\n##$TD= 64\n", ErrorCode::bad_format},
        {"empty", "", ErrorCode::bad_format},
        {"TD cut off", head + "##$TD", ErrorCode::bad_format},
        {"no TD", head, ErrorCode::bad_value, "TD is "},
        {"TD 0", head + "##$TD= 0\n", ErrorCode::bad_value, "TD is "},
        {"TD 1", head + "##$TD= 1\n", ErrorCode::bad_value, "TD is "},
        {"TD negative", head + "##$TD= -5\n", ErrorCode::bad_value, "TD is "},
        {"TD no number", head + "##$TD= many\n", ErrorCode::bad_value, "TD is "},
        {"TD not finite", head + "##$TD= nan\n", ErrorCode::bad_value, "TD is "},
        {"TD 2^40", head + "##$TD= 1099511627776\n", ErrorCode::too_large, "TD is "},
        {"TD 1e308", head + "##$TD= 1e308\n", ErrorCode::too_large, "TD is "},
        {"one point over the limit", head + "##$TD= 2097154\n", ErrorCode::too_large, "TD is "},
        {"one channel over the limit", head + "##$TD= 1048577\n##$AQ_mod= 0\n", ErrorCode::too_large, "TD is "},
        {"no width", kOrigin + "##$SFO1= 400.13\n##$TD= 64\n", ErrorCode::bad_value, "SW_h is "},
        {"width negative", head + "##$SW_h= -8000\n##$TD= 64\n", ErrorCode::bad_value, "SW_h is "},
        {"width that is no float", head + "##$SW_h= 1e-320\n##$TD= 64\n", ErrorCode::bad_value, "SW_h is "},
        {"frequency 0", head + "##$SFO1= 0\n##$TD= 64\n", ErrorCode::bad_value, "SFO1 is "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteText(folder / "acqus", c.acqus);
        WriteText(folder / "fid", Encode<std::int32_t>(Signal(64), false));
        const BrukerRead read(folder / "fid", kFolderFid);
        ASSERT_FALSE(read.status);
        EXPECT_EQ(read.status.error().code, c.expected);
        EXPECT_EQ(read.status.error().where, "ReadParaBruker/1DDRW");
        EXPECT_TRUE(read.status.error().text.starts_with(c.names)) << read.status.error().text;
        EXPECT_TRUE(read.set().spec.DataRe.empty()) << "nothing is sized by an unchecked count";
    }
}

TEST(BrukerFid, MissingCompanionsAndTheSpareParameterFile)
{
    const TempFolder folder;
    const std::string fid = Encode<std::int32_t>(Signal(64), false);
    WriteText(folder / "bare/fid", fid);
    WriteText(folder / "nofid/acqus", Acqus("##$TD= 64\n"));
    WriteText(folder / "spare/acqus", "\n");
    WriteText(folder / "spare/acqu", Acqus("##$TD= 64\n"));
    WriteText(folder / "spare/fid", fid);
    WriteText(folder / "largest/acqus", Acqus("##$TD= 2097152\n"));
    WriteText(folder / "largest/fid", fid);
    EXPECT_EQ(BrukerRead(folder / "bare/fid", kFolderFid).status.error().code, ErrorCode::not_found);
    EXPECT_EQ(BrukerRead(folder / "nofid/fid", kFolderFid).status.error().code, ErrorCode::not_found);
    EXPECT_TRUE(BrukerRead(folder / "spare/fid", kFolderFid).status);
    const BrukerRead largest(folder / "largest/fid", kFolderFid);
    ASSERT_TRUE(largest.status);
    EXPECT_EQ(largest.par().POINT, kMaxPoints);
    FileType rows = TypeOf(folder / "largest/ser", kFolderFid);
    rows.data_name = "SER";
    GlobalBlock& g = *largest.g;
    ScriptedAsker asker;
    EXPECT_EQ(ReadBruker({g, asker, rows, 0}).error().code, ErrorCode::two_dimensional);
}

TEST(BrukerFid, TitlesOfAnyCodePageBecomeUtf8)
{
    struct Case {
        const char* name;
        const char* bytes;
        const char* utf8;
    };
    const Case cases[] = {
        {"UTF-8", "Caf\xC3\xA9 \xCE\xB1-D", "Caf\xC3\xA9 \xCE\xB1-D"},
        {"Latin-1", "25 \xB5M in D\xF6se", "25 \xC2\xB5M in D\xC3\xB6se"},
        {"CP932", "\x83\x65\x83\x58\x83\x67", "\xC2\x83\x65\xC2\x83\x58\xC2\x83\x67"}, // told from Latin-1 by nothing
        {"empty", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteText(folder / "acqus", Acqus("##$TD= 8\n##$PROBHD= <" + std::string(c.bytes) + ">\n"));
        WriteText(folder / "fid", Encode<std::int32_t>(Signal(8), false));
        WriteText(folder / "pdata/1/procs", Procs(""));
        WriteText(folder / "pdata/1/title", std::string(c.bytes) + "\r\n");
        const BrukerRead read(folder / "fid", kFolderFid);
        ASSERT_TRUE(read.status);
        EXPECT_EQ(read.par().COMNT, c.utf8);
        EXPECT_EQ(read.par().Probe, c.utf8);
    }
}

TEST(BrukerSpectrum, AxisDescendsFromOffsetAndIntegersTakeTheirExponent)
{
    const TempFolder folder;
    const auto re = Signal(16), im = Signal(32);
    WriteText(folder / "acqus", Acqus("##$TD= 32\n##$BYTORDA= 1\n"));
    WriteText(folder / "pdata/1/procs", Procs("##$SI= 16\n##$NC_proc= -3\n##$BYTORDP= 0\n##$DTYPP= 0\n"));
    WriteText(folder / "pdata/1/1r", Encode<std::int32_t>(re, false));
    const BrukerRead alone(folder / "pdata/1/1r", kFolderSpectrum);
    ASSERT_TRUE(alone.status) << alone.status.error().text;
    EXPECT_EQ(alone.set().Warnings.size(), 1U) << "there is no 1i";
    WriteText(folder / "pdata/1/1i", Encode<std::int32_t>(im, false).substr(0, 64));
    const BrukerRead read(folder / "pdata/1/1r", kFolderSpectrum);
    ASSERT_TRUE(read.status);
    EXPECT_TRUE(read.set().Warnings.empty());
    const ParamBlock& par = read.par();
    EXPECT_EQ(par.POINT, 16);
    EXPECT_EQ(par.SMODE, 1);
    EXPECT_EQ(par.ObsCenter, 400.132);
    EXPECT_EQ(par.OBFRQ0PPM, 400.13);
    EXPECT_EQ(par.FREQU, 8000);
    EXPECT_EQ(par.RESOL, 500);
    EXPECT_DOUBLE_EQ(par.Resolution2, -500 / 400.13);
    EXPECT_EQ(par.RefX, 15);
    double largest = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_NEAR(read.set().spec.XAxis[i], 15.0 - static_cast<double>(i) * 500 / 400.13, 1e-12);
        EXPECT_EQ(read.set().spec.DataRe[0][i], re[i] / 8);
        EXPECT_EQ(read.set().spec.DataIm[0][i], im[i] / 8);
        EXPECT_EQ(alone.set().spec.DataIm[0][i], 0);
        EXPECT_EQ(read.set().spec.SourceRe[0][i], read.set().spec.DataRe[0][i]);
        largest = std::max(largest, std::hypot(re[i], im[i]) / 8);
    }
    EXPECT_FLOAT_EQ(par.DispLeft, static_cast<float>(largest));
}

TEST(BrukerSpectrum, NeedsProcsButNotAcqus)
{
    const TempFolder folder;
    const std::string points = Encode<double>(Signal(16), true);
    WriteText(folder / "1r", points);
    EXPECT_EQ(BrukerRead(folder / "1r", kFolderSpectrum).status.error().code, ErrorCode::not_found);
    WriteText(folder / "procs", Procs("##$SI= 16\n##$DTYPP= 2\n##$BYTORDP= 1\n##$NC_proc= -3\n##$AXNUC= <13C>\n"));
    const BrukerRead read(folder / "1r", kFolderSpectrum);
    ASSERT_TRUE(read.status) << read.status.error().text;
    EXPECT_EQ(read.par().OBNUC, "13C");
    EXPECT_NEAR(read.par().ObsCenter, 400.13 * (1 + 15e-6) - 0.004, 1e-9);
    EXPECT_EQ(read.set().spec.DataRe[0][3], static_cast<float>(Signal(16)[3])) << "no exponent for floats";

    struct Case {
        const char* name;
        const char* records;
        ErrorCode expected;
    };
    const Case cases[] = {
        {"no SI", "", ErrorCode::bad_value},
        {"SI 0", "##$SI= 0\n", ErrorCode::bad_value},
        {"SI negative", "##$SI= -16\n", ErrorCode::bad_value},
        {"SI 2^40", "##$SI= 1099511627776\n", ErrorCode::too_large},
        {"SF 0", "##$SI= 16\n##$SF= 0\n", ErrorCode::bad_value},
        {"SW_p negative", "##$SI= 16\n##$SW_p= -1\n", ErrorCode::bad_value},
        {"OFFSET no number", "##$SI= 16\n##$OFFSET= left\n", ErrorCode::bad_value},
        {"NC_proc beyond reason", "##$SI= 16\n##$NC_proc= 2000000000\n", ErrorCode::bad_value},
        {"empty 1r", "##$SI= 16\n", ErrorCode::truncated},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WriteText(folder / "procs", Procs(c.records));
        WriteText(folder / "1r", c.expected == ErrorCode::truncated ? "" : points);
        const BrukerRead refused(folder / "1r", kFolderSpectrum);
        ASSERT_FALSE(refused.status);
        EXPECT_EQ(refused.status.error().code, c.expected);
    }
}

TEST(BrukerFlat, FloatsAndIntegersAreToldApartByTheirValues)
{
    struct Case {
        const char* name;
        std::string (*encode)(const std::vector<double>&, bool);
    };
    const auto signal = Signal(64);
    for (const Case& c : {Case{"f32", Encode<float>}, Case{"i32", Encode<std::int32_t>}}) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteText(folder / "001001.AQS", Acqus("##$TD= 64\n##$DTYPA= 0\n"));
        WriteText(folder / "001001.FQS", Procs("##$SF= 400.1301\n##$SI= 64\n##$DTYPP= 0\n"));
        WriteText(folder / "001001.FID", c.encode(signal, false));
        WriteText(folder / "001001.1R", c.encode(signal, false));
        const BrukerRead fid(folder / "001001.FID", kFlatFid), spectrum(folder / "001001.1R", kFlatSpectrum);
        ASSERT_TRUE(fid.status && spectrum.status);
        EXPECT_EQ(fid.par().FileRefMHz, 400.1301);
        EXPECT_EQ(fid.par().DTYPE, "BRUX1F");
        EXPECT_NEAR(fid.set().spec.DataRe[0][1] - fid.set().spec.DataRe[0][2],
                    (signal[2] - signal[4]) / *std::ranges::max_element(signal), 2e-2);
        for (std::size_t i = 0; i < 64; ++i) EXPECT_EQ(spectrum.set().spec.DataRe[0][i], static_cast<float>(signal[i]));
    }
}

TEST(BrukerDummy, IsLeftOnceAndOnlyWhereItMayBe)
{
    const TempFolder folder;
    WriteText(folder / "fid", "x");
    LeaveBrukerDummy(TypeOf(folder / "fid", kFolderFid));
    LeaveBrukerDummy(TypeOf(folder / "1r", kFolderSpectrum));
    LeaveBrukerDummy(TypeOf(folder / "a/b.fid", kFolderFid)); // no such folder: silence
    EXPECT_EQ(ReadText(folder / "SPEC.BRUF"), "BRUKER");
    EXPECT_TRUE(std::filesystem::exists(folder / "SPEC.BRUD"));
    WriteText(folder / "SPEC.BRUF", "kept");
    LeaveBrukerDummy(TypeOf(folder / "fid", kFolderFid));
    LeaveBrukerDummy(TypeOf(folder / "x.fid", kFlatFid));
    EXPECT_EQ(ReadText(folder / "SPEC.BRUF"), "kept");
}

} // namespace
} // namespace nmr
