// JCAMP-DX reader on small texts: heads as real programs write them, and what is wrong with files.

#include "formats/jcamp_fixture.h"

namespace nmr {
namespace {

using namespace test;

std::string Replaced(std::string text, std::string_view from, std::string_view to)
{
    const std::size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    if (at != text.npos) text.replace(at, from.size(), to);
    return text;
}

void ExpectSmallSpectrum(const JcampRead& read, double first_ppm = 8)
{
    ASSERT_TRUE(read.status) << read.status.error().text;
    const DataSet& set = read.set();
    EXPECT_EQ(set.par.SMODE, 1);
    EXPECT_EQ(set.par.OBNUC, "1H");
    EXPECT_EQ(set.par.ObsCenter, 400);
    ASSERT_EQ(set.par.POINT, 8);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(set.spec.DataRe[0][i], 50.0F + 0.5F * static_cast<float>(i));
        EXPECT_NEAR(set.spec.XAxis[i], first_ppm - static_cast<double>(i), 1e-9);
    }
    EXPECT_NEAR(set.par.Resolution2, -1, 1e-9); // files that keep the step alone bring this axis back
    EXPECT_NEAR(set.par.RESOL, 400, 1e-9);
    EXPECT_NEAR(set.par.FREQU, 3200, 1e-3);
}

TEST(Jcamp, HeadsOfEveryWriterGiveTheSameSpectrum)
{
    const std::string plain = Spectrum(kHertz);
    std::string crlf, indented, tabs;
    for (const char c : plain) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    indented = " " + Replaced(plain, "8\n##FIRSTY", "8\n  ##FIRSTY");
    for (const char c : plain) tabs += c == '=' ? std::string("=\t") : std::string(1, c);
    const struct {
        const char* name;
        std::string text;
    } cases[] = {
        {"plain", plain},
        {"CR LF", crlf},
        {"blanks before labels", indented},
        {"tabs behind labels", tabs},
        {"labels without blanks", Replaced(Replaced(plain, "DATA TYPE", "DATATYPE"), ".OBSERVE FREQ", ".OBSERVEFREQ")},
        {"labels in small letters", Replaced(plain, "##.OBSERVE NUCLEUS", "##.Observe_Nucleus")},
        {"JCAMPDX", Replaced(plain, "JCAMP-DX=5.00", "JCAMPDX= 6.0   $$ some program")},
        {"type in one word", Replaced(plain, "NMR SPECTRUM", "NMRSPECTRUM")},
        {"comments behind values", Replaced(plain, "FIRSTX=3200", "FIRSTX=3200 $$ Hz")},
        {"decimal commas", Replaced(Replaced(plain, "YFACTOR=0.5", "YFACTOR=0,5"), "LASTX=400", "LASTX=400,0")},
        {"count with decimals", Replaced(plain, "NPOINTS=8", "NPOINTS=8.000000000")},
        {"END without a sign", Replaced(plain, "##END=", "##END")},
        {"ppm", Spectrum(kPpm)},
        {"ppm in other words", Spectrum(Replaced(kPpm, "PPM", "d (ppm)"))},
        {"kHz", Spectrum("##XUNITS=kHz\n##FIRSTX=3.2\n##LASTX=0.4\n")},
        {"only the step", Spectrum("##XUNITS=HZ\n##FIRSTX=3200\n##DELTAX=-400\n")},
        {"DELTAX of the wrong sign", Spectrum(Replaced(kHertz, "DELTAX=-400", "DELTAX=400"))},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const JcampRead read(c.text);
        ExpectSmallSpectrum(read);
        EXPECT_EQ(read.par().ExpTitle, "small");
        EXPECT_EQ(read.Warnings(), "");
    }
}

TEST(Jcamp, AxesInHertzGoByTheReferenceOfTheFile)
{
    const std::string edge = "##XUNITS=HZ\n##FIRSTX=2800\n##LASTX=0\n";
    const auto bruker = [](const std::string& keys) {
        return "$$ Bruker specific parameters\n$$ ----\n" + keys + "$$ End of Bruker specific parameters\n";
    };
    const struct {
        const char* name;
        std::string more, axis;
        double first_ppm;
    } cases[] = {
        {"nothing: from the edge", "", edge, 7},
        {"OFFSET and SF", bruker("##$SF= 400\n##$OFFSET= 12.5\n##$SW_p= 3200\n##$SI= 8\n"), edge, 12.5},
        {"SF of another nucleus", bruker("##$SF= 100\n##$OFFSET= 12.5\n"), edge, 7},
        {"shift reference", "##.SHIFT REFERENCE= INTERNAL, CDCl3, 1, 9.5\n", edge, 9.5},
        {"shift reference in brackets", "##.SHIFT REFERENCE=(INTERNAL, Water, 5, 4.5)\n", edge, 8.5},
        {"shift reference of point 0", "##.SHIFT REFERENCE = INTERNAL, TMS, 0, 0\n", edge, 7},
        {"shift reference without fields", "##.SHIFT REFERENCE=\n", edge, 7},
        {"reference point in Hz", "##$REFERENCE_POINT= 800\n", edge, 5},
        {"JEOL reference from the high end",
         "$$ JEOL SPECIFIC PARAMETERS\n##$SMEXR=\t2.0\t$$ppm\n##$SMTMS=\t3\n$$ END OF JEOL SPECIFIC PARAMETERS\n", edge,
         5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const JcampRead read(Spectrum(c.axis, c.more));
        ASSERT_TRUE(read.status) << read.status.error().text;
        // A shift reference gives the 0 ppm frequency, a few ppm from the observe frequency.
        EXPECT_NEAR(read.set().spec.XAxis[0], c.first_ppm, 1e-4);
        EXPECT_NEAR(read.set().spec.XAxis[7], c.first_ppm - 7, 1e-4);
    }
}

TEST(Jcamp, ZeroPpmFrequencyFollowsFromEitherDirection)
{
    const JcampRead falling(Spectrum(kHertz));
    const JcampRead rising(Spectrum("##XUNITS=HZ\n##FIRSTX=400\n##LASTX=3200\n"));
    ASSERT_TRUE(falling.status && rising.status);
    EXPECT_GT(rising.par().Resolution2, 0);
    // The middle of 8 points of 400 Hz stands at 400 MHz: 0 ppm is 1600 Hz and the middle's shift below it.
    EXPECT_NEAR(falling.par().OBFRQ0PPM, 400 - 1600e-6, 1e-7);
    EXPECT_NEAR(rising.par().OBFRQ0PPM, 400 - 2000e-6, 1e-7);
}

TEST(Jcamp, FidsArePaddedTurnedAndTimed)
{
    const std::string jeol = "$$ JEOL SPECIFIC PARAMETERS\n##$FREQU=\t1000\t$$Hz\n$$ END OF JEOL SPECIFIC PARAMETERS\n";
    const std::string bruker = "$$ Bruker specific parameters\n##$GRPDLY= 1.25\n##$TD= 8\n##$SF= 399.999\n"
                               "##$P= (0..3)\n1 8.5 2 3\n##$BF1= 399.999\n##$PULPROG= <zg30>\n"
                               "$$ End of Bruker specific parameters\n";
    const struct {
        const char* name;
        std::string text;
        float sign; ///< of the imaginary part as handed over
        bool warned;
    } cases[] = {
        {"Bruker system", Fid(), 1, false},          {"Bruker block", Fid(bruker, "?"), 1, false},
        {"JEOL block", Fid(jeol, "?"), -1, false},   {"JEOL system", Fid("", "JEOL GX 400"), -1, false},
        {"unknown", Fid("", "home-built"), 1, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const JcampRead read(c.text);
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_EQ(read.par().SMODE, 0);
        EXPECT_EQ(read.par().FIDPoints, 4);
        EXPECT_NEAR(read.par().FREQU, 1000, 1e-3);
        EXPECT_EQ(read.set().spec.DataRe[0][3], 26.0F);
        EXPECT_EQ(read.set().spec.DataIm[0][3], c.sign * 12.0F);
        EXPECT_EQ(!read.Warnings().empty(), c.warned) << read.Warnings();
    }
    const JcampRead block(Fid(bruker));
    EXPECT_EQ(block.par().GroupDelay, 1.25);
    EXPECT_EQ(block.par().FileRefMHz, 399.999);
    EXPECT_EQ(block.par().OBFRQ0PPM, 399.999);
    EXPECT_EQ(block.par().ObsCenter, 400);
    EXPECT_EQ(block.par().PW[0], 8.5F);
    EXPECT_EQ(block.par().EXMOD, "zg30");
    EXPECT_NEAR(JcampRead(Fid("##.SHIFT REFERENCE=INTERNAL, CDCl3, 3, 5.0\n")).par().FileRefMHz, 400 - 0.002, 1e-7);
}

TEST(Jcamp, ListsOfColumnsMayHaveDecimalCommas)
{
    std::string text = Replaced(Fid(), "##FIRST=0, 10, 1, 1", "##FIRST=0,0, 10,5, 1,5, 1");
    text = Replaced(text, "##LAST=0.003, 13, 4, 2", "##LAST=0,003, 13,5, 4,5, 2");
    text = Replaced(text, "##FACTOR=0.001, 2, 3, 1", "##FACTOR=0,001, 2,5, 3,5, 1");
    const JcampRead commas(text);
    ASSERT_TRUE(commas.status);
    EXPECT_NEAR(commas.par().FREQU, 1000, 1e-3);
    EXPECT_EQ(commas.set().spec.DataRe[0][3], 32.5F);
    EXPECT_EQ(commas.set().spec.DataIm[0][3], 14.0F);
    // No blanks behind the commas, and the columns in another order.
    text = Replaced(Fid(), "##SYMBOL=X, R, I, N", "##SYMBOL=N,I,R,X");
    text = Replaced(text, "##VAR_DIM=4, 4, 4, 2", "##VAR_DIM=2,4,4,4");
    text = Replaced(text, "##UNITS=SECONDS, ARBITRARY UNITS, ARBITRARY UNITS,", "##UNITS=,ARBITRARY,ARBITRARY,SECONDS");
    text = Replaced(text, "##FIRST=0, 10, 1, 1", "##FIRST=1,1,10,0");
    text = Replaced(text, "##LAST=0.003, 13, 4, 2", "##LAST=2,4,13,0.003");
    text = Replaced(text, "##FACTOR=0.001, 2, 3, 1", "##FACTOR=1,3,2,0.001");
    const JcampRead turned(text);
    ASSERT_TRUE(turned.status);
    EXPECT_NEAR(turned.par().FREQU, 1000, 1e-3);
    EXPECT_EQ(turned.set().spec.DataIm[0][3], 12.0F);
}

TEST(Jcamp, PrivateKeysComeInTheUnitsOfTheFields)
{
    const JcampRead read(Spectrum(
        kHertz, "##.AVERAGES=16\n##.DIGITISER RES=18\n##.ACQUISITION MODE=SIMULATANEOUS\n##LONG DATE= 2006/01/31 "
                "09:24:52+0000\n$$ ----\n$$ JEOL SPECIFIC PARAMETERS\n##$OBSET=\t124.00\t$$KHz\n##$IRSET=\t500\t$$Hz\n"
                "##$PD=\t4950\t$$ms\n##$PI1=\t2.0\t$$ms\n##$PW1=\t0.0054\t$$ms\n##$SCANS=\t128\n##$POINT=\t77\n"
                "##$DTYPE=\t0\n##$EXMOD=\tNON\n##$OBNUC=\tProton\n##$CTEMP=\t18.1\t$$c\n##$NOSUCH\n"
                "$$ END OF JEOL SPECIFIC PARAMETERS\n"));
    ASSERT_TRUE(read.status);
    const ParamBlock& par = read.par();
    EXPECT_EQ(par.OBSET, 124.0F);
    EXPECT_EQ(par.IRSET, 0.5F);
    EXPECT_EQ(par.PD, 4.95F);
    EXPECT_EQ(par.PI[0], 0.002F);
    EXPECT_EQ(par.PW[0], 5.4F);
    EXPECT_EQ(par.SCANS, 128);
    EXPECT_EQ(par.TIMES, 16);
    EXPECT_EQ(par.ADBIT, 18);
    EXPECT_EQ(par.POINT, 8);
    EXPECT_EQ(par.DTYPE, "JCAMP-DX");
    EXPECT_EQ(par.EXMOD, "NON");
    EXPECT_EQ(par.OBNUC, "1H");
    EXPECT_EQ(par.CTEMP, 18.1F);
    EXPECT_EQ(par.AcqMode, 2);
    EXPECT_EQ(par.DATIM, "31/Jan/2006 09:24:52");
}

TEST(Jcamp, WhatIsMendedIsSaid)
{
    const struct {
        const char *name, *from, *to, *warning;
    } cases[] = {
        {"one point less than the head", "NPOINTS=8", "NPOINTS=9", "mended"},
        {"one point more than the head", "NPOINTS=8", "NPOINTS=7", "mended"},
        {"no count", "##NPOINTS=8\n", "", "number of points is missing"},
        {"a line is missing", "3 104 105 106 107\n", "", "holds 4 of 8 points"},
        {"no END", "##END=\n", "", "without its ##END"},
        {"factor of 0", "YFACTOR=0.5", "YFACTOR=0.0000", "YFACTOR is 0"},
        {"no factor", "##YFACTOR=0.5\n", "", "YFACTOR is missing"},
        {"other first point", "FIRSTY=50", "FIRSTY=70", "FIRSTY is 70"},
        {"unknown value", "3 104", "3 ? 104", "unknown values"},
        {"no frequency", "##.OBSERVE FREQUENCY=400\n", "", "frequency is missing"},
        {"strange unit", "XUNITS=HZ", "XUNITS=FURLONGS", "taken for ppm"},
        {"infinite value", "7 100", "7 1E999", "beyond any instrument's"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const JcampRead read(Replaced(Spectrum(kHertz), c.from, c.to));
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_NE(read.Warnings().find(c.warning), std::string::npos) << read.Warnings();
    }
    // The ends of the axis belong to the points that are there, as the step tells.
    const JcampRead mended(Replaced(Spectrum(kHertz), "NPOINTS=8", "NPOINTS=9"));
    EXPECT_EQ(mended.par().POINT, 8);
    EXPECT_NEAR(mended.set().spec.XAxis[7], 1, 1e-9);
}

TEST(Jcamp, WhatCantBeReadIsRefused)
{
    const struct {
        const char* name;
        std::string text;
        ErrorCode code;
    } cases[] = {
        {"infrared", Replaced(Spectrum(kHertz), "NMR SPECTRUM", "INFRARED SPECTRUM"), ErrorCode::not_nmr},
        {"no type", Replaced(Spectrum(kHertz), "##DATA TYPE=NMR SPECTRUM\n", ""), ErrorCode::not_nmr},
        {"empty", "", ErrorCode::not_nmr},
        {"two dimensions", Replaced(Spectrum(kHertz), "NMR SPECTRUM", "nD NMR SPECTRUM"), ErrorCode::two_dimensional},
        {"two dimensions by number", Spectrum(kHertz, "##NUM DIM=2\n"), ErrorCode::two_dimensional},
        {"peaks", Replaced(Spectrum(kHertz), "##XYDATA=(X++(Y..Y))", "##PEAK TABLE=(XY..XY)"), ErrorCode::bad_format},
        {"parameters only", Spectrum(kHertz).substr(0, 150), ErrorCode::truncated},
        {"empty table", Spectrum(kHertz, "", ""), ErrorCode::truncated},
        {"too many points in the table", Replaced(Spectrum(kHertz), "NPOINTS=8", "NPOINTS=6"), ErrorCode::bad_format},
        {"bad character", Replaced(Spectrum(kHertz), "3 104", "3 10#4"), ErrorCode::bad_format},
        {"count too large", Replaced(Spectrum(kHertz), "NPOINTS=8", "NPOINTS=99999999999"), ErrorCode::too_large},
        {"negative count", Replaced(Spectrum(kHertz), "NPOINTS=8", "NPOINTS=-8"), ErrorCode::bad_value},
        {"axis without extent", Spectrum("##XUNITS=HZ\n##FIRSTX=5\n##LASTX=5\n"), ErrorCode::bad_value},
        {"no time axis", Replaced(Replaced(Fid(), "##LAST=0.003, 13, 4, 2\n", ""), "##FACTOR=0.001,", "##FACTOR=0,"),
         ErrorCode::bad_value},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const JcampRead read(c.text);
        ASSERT_FALSE(read.status);
        EXPECT_EQ(read.status.error().code, c.code) << read.status.error().text;
        EXPECT_EQ(read.status.error().where, "ReadDataJCAMP/1DDRW");
    }
}

TEST(Jcamp, ALinkFileGivesItsSpectrumOrAsks)
{
    const std::string open = "##TITLE=all\n##JCAMP-DX=5.00\n##DATA TYPE=LINK\n##BLOCKS=2\n";
    const std::string peaks = "##TITLE=peaks\n##DATA TYPE=NMR SPECTRUM\n##DATA CLASS=PEAK TABLE\n##NPOINTS=100\n"
                              "##PEAK TABLE=(XY..XY)\n1 2\n3 4\n##END=\n";
    const JcampRead third(open + peaks + "##TITLE=x\n##DATA TYPE=LINK\n##END=\n" + Spectrum(kHertz) + "##END=\n");
    ExpectSmallSpectrum(third);
    EXPECT_EQ(third.Warnings(), "");

    const std::string both = open + Fid() + Spectrum(kHertz) + "##END=\n";
    const JcampRead second(both, {FormAnswer{"2: Spectrum, small", {}}});
    ExpectSmallSpectrum(second);
    EXPECT_EQ(second.par().DataKind & kSpectrumBit, kSpectrumBit);
    ASSERT_EQ(second.asker.forms.size(), 1U);
    EXPECT_EQ(second.asker.forms[0].form, "Form110");
    EXPECT_EQ(second.asker.forms[0].values.at("BUTTON 1"), "1: FID, fid");

    const JcampRead nobody(both, {FormAnswer{"CANCEL", {}}});
    ASSERT_TRUE(nobody.status);
    EXPECT_EQ(nobody.par().SMODE, 0);
    EXPECT_NE(nobody.Warnings().find("2 data sets"), std::string::npos);
    const JcampRead cancelled(both, {FormAnswer{"Cancel", {}}});
    EXPECT_EQ(cancelled.status.error().code, ErrorCode::cancelled);
    // Who has no buttons to press answers by number.
    const JcampRead by_number(both, {FormAnswer{"BLOCK 2", {}}});
    ExpectSmallSpectrum(by_number);
    EXPECT_EQ(by_number.Warnings(), "");
    for (const char* word : {"BLOCK 3", "BLOCK 0", "BLOCK x"})
        EXPECT_EQ(JcampRead(both, {FormAnswer{word, {}}}).status.error().code, ErrorCode::bad_value) << word;
}

/// Three rows of two points; `times` of the pages.
std::string Rows(const std::string& units, const std::vector<std::string>& times, const std::string& more = "")
{
    std::string text = "##TITLE=rows\n##JCAMP-DX=6.0\n##DATA TYPE=nD NMR FID\n##DATA CLASS=NTUPLES\n##NUM DIM=2\n"
                       "##.OBSERVE FREQUENCY=400\n##.OBSERVE NUCLEUS=^1H\n" +
                       more + "##NPOINTS=6\n##SYMBOL=T1, T2, R, I\n##VAR_DIM=3, 2, 6, 6\n##UNITS=" + units +
                       ", SECONDS, A, A\n##FIRST=1, 0, 0, 0\n##LAST=9, 0.001, 0, 0\n##FACTOR=1, 1, 2, 2\n";
    for (std::size_t row = 0; row < times.size(); ++row) {
        const std::string first = std::to_string(10 * (row + 1));
        text += "##PAGE=T1=" + times[row] + "\n##DATA TABLE=(T2++(R..R)), PROFILE\n0 " + first + " 1\n";
        text += "##PAGE=T1=" + times[row] + "\n##DATA TABLE=(T2++(I..I)), PROFILE\n0 2 3\n";
    }
    return text + "##END=\n";
}

TEST(Jcamp, RowsOverUnevenTimesOrAListAreAnArray)
{
    const std::string list = "##$BRUKER FILE EXP=vdlist\n$$ 3s\n$$ 20m\n##$RELAX=\n";
    const std::string quadrature =
        "$$ Bruker specific parameters for F1\n##$FnMODE= 5\n$$ End of Bruker specific parameters\n";
    const std::string two_measured =
        "$$ Bruker specific parameters for F1\n##$TD= 2\n$$ End of Bruker specific parameters\n";
    struct Case {
        const char* name;
        std::string text;
        std::vector<float> values; ///< empty: a plane
    };
    const Case cases[] = {
        {"uneven times", Rows("SECONDS", {"1", "2", "9"}), {1, 2, 9}},
        {"even times", Rows("SECONDS", {"1", "2", "3"}), {}},
        {"frequencies", Rows("HZ", {"1", "2", "9"}), {}},
        {"a page without its time", Rows("SECONDS", {"1", "x", "9"}), {}},
        {"a list", Rows("HZ", {"1", "2"}, list), {3, 0.02F}},
        {"a list that is too short", Rows("HZ", {"1", "2", "3"}, list), {3, 0.02F, 3}},
        {"a list beside quadrature", Rows("HZ", {"1", "2"}, list + quadrature), {}},
        {"rows that were not measured", Rows("HZ", {"1", "2", "3", "4"}, list + two_measured), {3, 0.02F}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const JcampRead read(c.text);
        ASSERT_EQ(static_cast<bool>(read.status), !c.values.empty());
        if (c.values.empty()) {
            EXPECT_EQ(read.status.error().code, ErrorCode::two_dimensional);
            continue;
        }
        const DataSet& set = read.set();
        ASSERT_EQ(set.RowCount, static_cast<std::int32_t>(c.values.size()));
        EXPECT_EQ(set.par.FIDPoints, 2);
        for (std::size_t row = 0; row < c.values.size(); ++row) {
            EXPECT_EQ(set.RowValueA[row], c.values[row]);
            EXPECT_EQ(set.spec.DataRe[row][0], 20.0F * static_cast<float>(row + 1));
            EXPECT_EQ(set.spec.DataIm[row][1], 6);
        }
    }
}

TEST(Jcamp, EvenlySpacedPointsAreASpectrum)
{
    std::string points, crooked;
    for (int i = 0; i < 100; ++i) {
        points += std::to_string(5 - 0.05 * i) + " " + std::to_string(i) + "\n";
        crooked += std::to_string(5 - 0.0005 * i * i) + " " + std::to_string(i) + "\n";
    }
    const std::string head = "##TITLE=p\n##JCAMP-DX=4.24\n##DATA TYPE=NMR SPECTRUM\n##.OBSERVE FREQUENCY=400\n"
                             "##.OBSERVE NUCLEUS=1H\n##XUNITS=PPM\n##FIRSTX=5\n##LASTX=0.05\n##NPOINTS=100\n";
    const JcampRead even(head + "##XYPOINTS=(XY..XY)\n" + points + "##END=\n");
    ASSERT_TRUE(even.status);
    EXPECT_EQ(even.set().spec.DataRe[0][99], 99.0F);
    EXPECT_NEAR(even.set().spec.XAxis[99], 0.05, 1e-9);
    EXPECT_EQ(JcampRead(head + "##PEAK TABLE=(XY..XY)\n" + crooked + "##END=\n").status.error().code,
              ErrorCode::bad_format);
}

TEST(Jcamp, NoCutGivesASilentSpectrum)
{
    for (const std::string& whole : {Spectrum(kHertz), Fid()}) {
        const JcampRead full(whole);
        const auto re = full.set().spec.DataRe.all(), im = full.set().spec.DataIm.all();
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const JcampRead cut(std::string_view(whole).substr(0, length));
            if (!cut.status) {
                EXPECT_FALSE(cut.status.error().text.empty());
                continue;
            }
            const bool same = std::ranges::equal(re, cut.set().spec.DataRe.all()) &&
                              std::ranges::equal(im, cut.set().spec.DataIm.all());
            EXPECT_TRUE(same || !cut.set().Warnings.empty()) << "cut at " << length;
        }
    }
}

TEST(Jcamp, LinesAreSplit)
{
    std::string label;
    std::vector<std::string> fields;
    ASSERT_TRUE(Split_Label("##Units= HZ , ARBITRARY\tUNITS", label, fields));
    EXPECT_EQ(label, "##UNITS");
    EXPECT_EQ(fields, (std::vector<std::string>{"HZ", "ARBITRARY", "UNITS", ""}));
    EXPECT_FALSE(Split_Label("no record", label, fields));
    EXPECT_EQ(fields, std::vector<std::string>(4));
    ASSERT_TRUE(Split_Label("##A=" + std::string(300, ','), label, fields));
    EXPECT_EQ(fields.size(), kMostFields);
    ASSERT_TRUE(Split_PrivateLine("##$PW1=\t5.4, <a b>\t$$us", label, fields));
    EXPECT_EQ(label, "PW1");
    EXPECT_EQ(fields, (std::vector<std::string>{"5.4", "a b"}));
    EXPECT_FALSE(Split_PrivateLine("##TITLE=x", label, fields));
}

} // namespace
} // namespace nmr
