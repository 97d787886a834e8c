// Detection on made-up files: every family, every rule of names and folders, bad input.

#include "formats/detect.h"

#include "core/quiet_answers.h"
#include "formats/key_values.h"
#include "formats/probes.h"
#include "formats/varian_procpar.h"
#include "samples/family_samples.h"
#include "support/files.h"
#include "support/scripted_asker.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace nmr::test {

/// A readable failure instead of a dump of bytes.
void PrintTo(const Image& image, std::ostream* out)
{
    *out << image.str().size() << " bytes";
}

namespace {

const NuclearTable& Nuclides()
{
    static const NuclearTable table = NuclearTable::BuiltIn();
    return table;
}

using Files = std::vector<std::pair<std::string, std::string>>;

struct Expected {
    std::int32_t code = -1;
    std::string tag = "ERR";
    std::string mode = {};
    std::string extension = {};
    std::string data_name = {};
    std::string data_file = {}; ///< where the data really are, below the folder; empty: the path asked for
};

struct Case {
    const char* name;
    Files files;
    const char* path;
    Expected expected;
};

void Check(const Case& c, ScriptedAsker& asker)
{
    SCOPED_TRACE(c.name);
    const TempFolder folder;
    for (const auto& [name, content] : c.files) WriteText(folder / name, content);
    const FileType type = ReadFileType(folder / c.path, asker, Nuclides());
    EXPECT_EQ(type.code, c.expected.code);
    EXPECT_EQ(type.tag, c.expected.tag);
    if (c.expected.code < 0) return;
    EXPECT_EQ(type.mode, c.expected.mode);
    EXPECT_EQ(type.extension, c.expected.extension);
    EXPECT_EQ(type.data_name, c.expected.data_name);
    const std::string data = folder / (c.expected.data_file.empty() ? std::string(c.path) : c.expected.data_file);
    EXPECT_EQ(type.path, data);
    EXPECT_EQ(type.directory, std::filesystem::path(data).parent_path().string());
}

void CheckAll(const std::vector<Case>& cases)
{
    for (const Case& c : cases) {
        ScriptedAsker asker;
        Check(c, asker);
    }
}

// --- Families

TEST(Detect, BinaryFamiliesWithoutRealSamples)
{
    const auto alice = [](AliceSample sample) { return Files{{"x.abc", AliceFile(sample).str()}}; };
    const auto one = [](const Image& image) { return Files{{"x.abc", image.str()}}; };
    CheckAll({
        {"Alice 1.00 FID", alice({}), "x.abc", {0x1000, "ALS1", "1D:NON", ".ALS"}},
        {"Alice 1.01 spectrum", alice({.newer = true, .spectrum = 1}), "x.abc", {0x1100, "ALS1", "1D:NON", ".ALS"}},
        {"Alice 2D, N is 2M",
         alice({.dimensions = 2, .data_bytes = 1024 * 128 * 8}),
         "x.abc",
         {0x2000, "ALS2F", "V_HETERO:NON", ".ALS"}},
        {"Alice 2D, N is 4M, nuclei within 1 %",
         alice({.dimensions = 2, .spectrum = 1, .mhz_a = 400.0F, .mhz_b = 403.9F, .data_bytes = 1024 * 128 * 16}),
         "x.abc",
         {0x2100, "ALS2D", "VPH_HOMO:NON", ".ALS"}},
        {"Alice without a frequency", alice({.mhz_a = 0.0F}), "x.abc", {}},
        {"Alice whose header is beyond the file", {{"x.abc", AliceFile({.header = 3500}).first(4096)}}, "x.abc", {}},
        {"Lambda FID", one(LambdaFile()), "x.abc", {0x1002, "LAMBDA1", "1D:single_pulse", ".LAM"}},
        {"Lambda spectrum", one(LambdaFile(1, 1)), "x.abc", {0x1102, "LAMBDA1", "1D:single_pulse", ".LAM"}},
        {"Lambda 2D of one nucleus",
         one(LambdaFile(2, 0, 403.9)),
         "x.abc",
         {0x2002, "LAMBDA2F", "VPH_HOMO:single_pulse", ".LAM"}},
        {"Lambda 2D of two nuclei",
         one(LambdaFile(2, 1, 404.1)),
         "x.abc",
         {0x2102, "LAMBDA2D", "VPH_HETERO:single_pulse", ".LAM"}},
        {"Alpha FID", one(AlphaFile()), "x.abc", {0x1005, "ALPHA1", "1D:NON", ".ALP"}},
        {"Alpha spectrum", one(AlphaFile(0, 1)), "x.abc", {0x1105, "ALPHA1", "1D:NON", ".ALP"}},
        {"Alpha 2D of one nucleus", one(AlphaFile(1)), "x.abc", {0x2005, "ALPHA2F", "VPH_HOMO:NON", ".ALP"}},
        {"Alpha 2D of two nuclei",
         one(AlphaFile(1, 1, kVax100)),
         "x.abc",
         {0x2105, "ALPHA2D", "VPH_HETERO:NON", ".ALP"}},
        {"Nuts FID", one(NutsFile()), "x.abc", {0x1007, "NUTS1", "1D:X_", ".NUT"}},
        {"Nuts spectrum", one(NutsFile(1, 1)), "x.abc", {0x1107, "NUTS1", "1D:X_", ".NUT"}},
        {"Nuts 2D", one(NutsFile(2, 1)), "x.abc", {0x2107, "NUTS2D", "V_", ".NUT"}},
        {"Nuts text", {{"x.abc", NutsText("NMR SPECTRUM")}}, "x.abc", {0x1107, "NUTS1", "1D:W_", ".NUT"}},
        {"Nuts word, no Nuts header", one(NutsFile(77)), "x.abc", {}},
        {"Aspect FID", one(MslFile()), "x.abc", {0x100F, "MSL1", "1D:SINGLE PULSE", ".MSL"}},
        {"Aspect spectrum", one(MslFile(-1)), "x.abc", {0x110F, "MSL1", "1D:SINGLE PULSE", ".MSL"}},
        {"Mac FID", {{"x.import", MacFile().str()}}, "x.import", {0x1011, "MAC1", "1D:PROTON", ".IMPORT"}},
        {"Mac spectrum, longer extension",
         {{"x.imports", MacFile("CARBON", 1).str()}},
         "x.imports",
         {0x1111, "MAC1", "1D:CARBON", ".IMPORTS"}},
        {"Mac without an experiment", {{"x.import", MacFile("").str()}}, "x.import", {}},
        {"Mac of the wrong kind", {{"x.import", MacFile("\x01\x02").str()}}, "x.import", {}},
        {"Ver.3", one(Tavo3File()), "x.abc", {0x100B, "TAVO1", "1D:V3", ".TV1"}},
        {"Ver.3 2D", one(Tavo3File('2')), "x.abc", {0x200B, "TAVO2F", "V2D:V3", ".TV2"}},
        {"DICOM", {{"x.abc", Image(512).Text(128, "DICM").str()}}, "x.abc", {0x1010, "SIEMENS", "", ".IMA"}},
        {"Siemens by its extension", {{"x.ima", Points(400)}}, "x.ima", {0x1010, "SIEMENS", "", ".IMA"}},
    });
}

TEST(Detect, NativeVer4)
{
    const auto file = [](Tavo4Sample sample) { return Files{{"x.tvo", Tavo4File(sample).str()}}; };
    CheckAll({
        {"spectrum", file({}), "x.tvo", {0x110C, "TAVO1_V4", "1D:V4", ".TVO1"}},
        {"FID, older banner",
         file({.banner = "TA NMR Ver.4.00", .spectrum = 0}),
         "x.tvo",
         {0x100C, "TAVO1_V4", "1D:V4", ".TVO1"}},
        {"only a later block is there", file({.entry = 832 + 8 * 19}), "x.tvo", {0x110C, "TAVO1_V4", "1D:V4", ".TVO1"}},
        {"the block stands far in the file", file({.block = 100000}), "x.tvo", {0x110C, "TAVO1_V4", "1D:V4", ".TVO1"}},
        {"2D", file({.length_2d = 19}), "x.tvo", {0x210C, "TAVO2D_V4", "V2D:V4", ".TVO2"}},
        {"just a label for 2D", file({.length_2d = 18}), "x.tvo", {0x110C, "TAVO1_V4", "1D:V4", ".TVO1"}},
        {"renamed to a text file", {{"x.txt", Tavo4File().str()}}, "x.txt", {0x110C, "TAVO1_V4", "1D:V4", ".TVO1"}},
        {"cut inside the head", {{"x.tvo", Tavo4File().first(1200)}}, "x.tvo", {}},
        {"cut before the parameters", {{"x.tvo", Tavo4File().first(2000)}}, "x.tvo", {}},
        {"a block that points nowhere", {{"x.tvo", Tavo4File().Long(520, 0x7FFFFFFF).str()}}, "x.tvo", {}},
        {"a banner alone", {{"x.tvo", "TA NMR Ver.4.01"}}, "x.tvo", {}},
    });
}

TEST(Detect, Delta)
{
    const auto file = [](DeltaSample sample) { return Files{{"x.jdf", DeltaFile(sample).str()}}; };
    const Expected fid{4099, "ECP1", "1D:single_pulse.ex2", ".ECP"};
    CheckAll({
        {"FID", file({}), "x.jdf", fid},
        {"FID, big-endian sections", file({.little_sections = false}), "x.jdf", fid},
        {"FID, header in the order of the sections", file({.little_header = true}), "x.jdf", fid},
        {"renamed", {{"x.abc", DeltaFile().str()}}, "x.abc", fid},
        {"the parameters stand beyond the head that is read first", file({.record_offset = 90000}), "x.jdf", fid},
        {"ppm axis", file({.unit = 26}), "x.jdf", {4355, "ECP1", "1D:single_pulse.ex2", ".ECP"}},
        {"hertz axis", file({.unit = 13}), "x.jdf", {4355, "ECP1", "1D:single_pulse.ex2", ".ECP"}},
        {"parameters cut off",
         {{"x.jdf", DeltaFile({.record_offset = 2000}).first(2010)}},
         "x.jdf",
         {4099, "ECP1", "1D:", ".ECP"}},
        {"1536 bytes are too few", {{"x.jdf", DeltaFile({.record_offset = 2000}).first(1536)}}, "x.jdf", {}},
        {"1537 bytes are enough",
         {{"x.jdf", DeltaFile({.record_offset = 2000}).first(1537)}},
         "x.jdf",
         {4099, "ECP1", "1D:", ".ECP"}},
    });
}

TEST(Detect, DeltaKindsOf2D)
{
    struct KindCase {
        const char* mode;
        std::uint32_t sections;
        const char* second;
        int kind;
    };
    const KindCase cases[] = {{"VPH_HOMO:single_pulse.ex2", 4, "1H", 0},
                              {"V_HOMO:single_pulse.ex2", 2, "1H", 1},
                              {"VPH_HETERO:single_pulse.ex2", 4, "Carbon13", 3},
                              {"V_HETERO:single_pulse.ex2", 2, "Carbon13", 4}};
    for (const KindCase& c : cases) {
        const TempFolder folder;
        WriteText(folder / "x.jdf", DeltaFile({.dimensions = 2, .nucleus2 = c.second, .sections = c.sections}).str());
        ScriptedAsker asker;
        const FileType type = ReadFileType(folder / "x.jdf", asker, Nuclides());
        EXPECT_EQ(type.code, 0x2003) << c.mode;
        EXPECT_EQ(type.tag, "ECP2F");
        EXPECT_EQ(type.mode, c.mode);
        EXPECT_EQ(type.kind_2d, c.kind);
    }
}

TEST(Detect, ExHeadersOfBothForms)
{
    const auto pair = [](const std::string& header) { return Files{{"a.gxd", Points()}, {"a.gxp", header}}; };
    CheckAll({
        {"lines, FID", pair(ExHeader()), "a.gxd", {0x1001, "GXD1", "1D", ".GXD"}},
        {"lines, spectrum", pair(ExHeader("BCM", 1, 1)), "a.gxd", {0x1101, "GXD1", "1D", ".GXD"}},
        {"the header was chosen", pair(ExHeader()), "a.gxp", {0x1001, "GXD1", "1D", ".GXD", "", "a.gxd"}},
        {"lines, 2D", pair(ExHeader("NOESY", 2)), "a.gxd", {0x2001, "GXD2F", "VNOESY", ".GXD"}},
        {"lines, 2D by its name", pair(ExHeader("VPHNOE")), "a.gxd", {0x2001, "GXD2FPH", "VPHNOE", ".GXD"}},
        {"lines, 2D spectrum", pair(ExHeader("VPHNOE", 2, 1)), "a.gxd", {0x2101, "GXD2D", "VPHNOE", ".GXD"}},
        {"packed, FID", pair(PackedExHeader()), "a.gxd", {0x1001, "GXD1", "1D", ".GXD"}},
        {"packed, 2D spectrum", pair(PackedExHeader("COSY", 2, 1)), "a.gxd", {0x2101, "GXD2D", "VCOSY", ".GXD"}},
        {"a numbered pair",
         {{"A.GXD01", Points()}, {"A.GXP01", ExHeader()}},
         "A.GXD01",
         {0x1001, "GXD1", "1D", ".GXD01"}},
        {"without an experiment", pair(ExHeader("B")), "a.gxd", {}},
        {"without a header", {{"a.gxd", Points()}}, "a.gxd", {}},
        {"header without points", {{"a.gxp", ExHeader()}}, "a.gxp", {}},
    });
}

TEST(Detect, GeOmegaPairs)
{
    const auto pair = [](int rows) { return Files{{"a.hed", GeHeader(rows)}, {"a.fid", Points()}}; };
    CheckAll({
        {"by its points", pair(1), "a.fid", {0x100A, "GE1", "1D", ".FID"}},
        {"by its header", pair(127), "a.hed", {0x100A, "GE1", "1D", ".HED", "", "a.fid"}},
        {"2D", pair(128), "a.fid", {0x200A, "GE2F", "V2D", ".FID"}},
        {"header without the key", {{"a.hed", "SW 5000\n"}, {"a.fid", Points()}}, "a.fid", {}},
        {"points alone", {{"a.fid", Points()}}, "a.fid", {}},
        {"Nuts file of the same extension", {{"a.fid", NutsFile().str()}}, "a.fid", {0x1007, "NUTS1", "1D:X_", ".NUT"}},
    });
}

TEST(Detect, Jcamp)
{
    const auto file = [](const std::string& text) { return Files{{"x.dx", text}}; };
    const std::string link = "##TITLE= all\n##JCAMP-DX= 5\n##DATA TYPE= LINK\n##BLOCKS= 2\n";
    const std::string peaks = "##TITLE= peaks\n##DATA TYPE= NMR PEAK TABLE\n##XYDATA= (XY..XY)\n1 1\n##END=\n";
    const std::string bruker = "$$ Bruker specific parameters\n$$ ---\n##$PULPROG= <zg>\n##$TD= 4\n"
                               "$$ End of Bruker specific parameters\n";
    const std::string jeol = "$$ JEOL SPECIFIC PARAMETERS\n##$EXMOD=\tNON\t$$ name\n"
                             "$$ END OF JEOL SPECIFIC PARAMETERS\n##$EXMOD= other\n";
    const std::string no_end = "$$ NMR SPECIFIC PARAMETERS\n##$EXMOD= SGNOE\n##TITLE= x\n##$EXMOD= other\n";
    CheckAll({
        {"spectrum", file(Jcamp()), "x.dx", {4365, "JCAMP1", "1D:JCAMP-DX", ".DX"}},
        {"FID, other extension", {{"x.JDX", Jcamp("NMR FID")}}, "x.JDX", {4109, "JCAMP1", "1D:JCAMP-DX", ".JDX"}},
        {"spelt without blanks", file(Jcamp("NMRSPECTRUM")), "x.dx", {4365, "JCAMP1", "1D:JCAMP-DX", ".DX"}},
        {"Bruker block", file(Jcamp("NMR FID", bruker)), "x.dx", {4109, "JCAMP1", "1D:zg", ".DX"}},
        {"JEOL block", file(Jcamp("NMR Spectrum", jeol)), "x.dx", {4365, "JCAMP1", "1D:NON", ".DX"}},
        {"block without an end", file(Jcamp("NMR FID", no_end)), "x.dx", {4109, "JCAMP1", "1D:SGNOE", ".DX"}},
        {"spectrum behind a peak list",
         file(link + peaks + Jcamp() + "##END=\n"),
         "x.dx",
         {4365, "JCAMP1", "1D:JCAMP-DX", ".DX"}},
        {"first of two tables",
         file(link + Jcamp("NMR FID") + Jcamp() + "##END=\n"),
         "x.dx",
         {4109, "JCAMP1", "1D:JCAMP-DX", ".DX"}},
        {"labels beyond the head that is read first",
         file(Jcamp("NMR FID", "##$X=" + std::string(90000, 'x') + "\n")),
         "x.dx",
         {4109, "JCAMP1", "1D:JCAMP-DX", ".DX"}},
        {"data type beyond the head",
         file("##$X=" + std::string(90000, 'x') + "\n" + Jcamp()),
         "x.dx",
         {4365, "JCAMP1", "1D:JCAMP-DX", ".DX"}},
        {"table before the type", file("##TITLE= x\n##XYDATA= (X++(Y..Y))\n1 2\n##DATA TYPE= NMR FID\n"), "x.dx", {}},
        {"infrared", file(Jcamp("INFRARED SPECTRUM")), "x.dx", {}},
        {"two dimensions", file(Jcamp("nD NMR SPECTRUM")), "x.dx", {0x210D, "JCAMP2D", "2D:JCAMP-DX", ".DX"}},
        {"a link without NMR", file(link + "##END=\n"), "x.dx", {}},
        {"other extension", {{"x.abc", Jcamp()}}, "x.abc", {}},
    });
}

TEST(Detect, NumberTables)
{
    const Expected csv{0x100E, "CSV1", "1D:", ".CSV"};
    const std::string block = "$CSVSTART,,\nPOINT,3,\n$END,,\n1, 2\n" + std::string(400, '\n');
    CheckAll({
        {"by its content", {{"x.abc", CsvRows()}}, "x.abc", csv},
        {"tabs", {{"x.txt", CsvRows("\t")}}, "x.txt", csv},
        {"one column", {{"x.dat", CsvRows("")}}, "x.dat", csv},
        {"one column below 301 bytes", {{"x.asc", "1.5\n2.5\n"}}, "x.asc", csv},
        {"long numbers", {{"x.csv", "0.000000000000e+00,1\n" + std::string(400, '1')}}, "x.csv", csv},
        {"byte order mark", {{"x.csv", "\xEF\xBB\xBF" + CsvRows()}}, "x.csv", csv},
        {"block form", {{"x.csv", block}}, "x.csv", csv},
        {"block form as text", {{"x.txt", block}}, "x.txt", csv},
        {"headings before the table", {{"x.csv", "Time (us);real\n0;2,7E+04\n20;5,0E+03\n"}}, "x.csv", csv},
        {"blanks and a comment", {{"x.txt", "# ppm  intensity\n1.50 20\n1.25 30\n1.00 5"}}, "x.txt", csv},
        {"a table named like instrument data", {{"data", CsvRows()}}, "data", csv},
        // The word is not followed by a blank or a zero byte, so the head says nothing.
        {"block form under another name", {{"data.xyz", block}}, "data.xyz", {}},
        {"block word alone", {{"data.xyz", "$CSVSTART \n" + block}}, "data.xyz", csv},
    });
}

TEST(Detect, TextThatIsNoTableIsSaidToBeInvalid)
{
    const std::string texts[] = {
        "Time;Amplitude\n" + std::string(400, '1'),
        "A letter of 1998\nabout the sample\n25\nand its price\n12.5\nwhich was too high.\n",
    };
    for (const std::string& text : texts) {
        ScriptedAsker asker;
        Check({"words", {{"x.csv", text}}, "x.csv", {}}, asker);
        ASSERT_EQ(asker.boxes.size(), 1U);
        EXPECT_EQ(asker.boxes[0].text, "Invalid Data");
        EXPECT_EQ(asker.boxes[0].title, "Data Error");
    }
}

// --- Instrument folders

Files BrukerFolder()
{
    return {{"exp/1/fid", Points()},
            {"exp/1/acqus", Acqus()},
            {"exp/1/pdata/1/1r", Points()},
            {"exp/1/pdata/1/procs", Procs()}};
}

TEST(Detect, BrukerFoldersAndNames)
{
    const Expected fid{4100, "BRU1", "1D:zg30", "", "FID", "exp/1/fid"};
    const Expected spectrum{4356, "BRU1", "1D:zg30", "", "1R", "exp/1/pdata/1/1r"};
    const Files ser{{"1/SER", Points()}, {"1/ACQUS", Acqus("UXNMR, Bruker Analytische Messtechnik GmbH")}};
    const Files processed{{"1/pdata/7/1r", Points()}, {"1/pdata/7/procs", Procs("XWIN-NMR")}, {"1/fid", ""}};
    Files with_2rr = BrukerFolder();
    with_2rr.emplace_back("exp/1/pdata/1/2rr", Points());
    CheckAll({
        {"the FID", BrukerFolder(), "exp/1/fid", fid},
        {"its folder", BrukerFolder(), "exp/1", fid},
        {"a closing separator", BrukerFolder(), "exp/1/", fid},
        {"other separators and letters", BrukerFolder(), "EXP\\1\\FID", fid},
        {"the spectrum", BrukerFolder(), "exp/1/pdata/1/1r", spectrum},
        {"its folder", BrukerFolder(), "exp/1/pdata/1", spectrum},
        {"upper case and a series", ser, "1/SER", {8196, "BRU2F", "2D:zg30", "", "SER"}},
        {"a series by its folder", ser, "1", {8196, "BRU2F", "2D:zg30", "", "SER", "1/SER"}},
        {"processed only", processed, "1", {4356, "BRU1", "1D:", "", "1R", "1/pdata/7/1r"}},
        {"two dimensions", with_2rr, "exp/1/pdata/1/1r", {8452, "BRU2D", "2D:zg30", "", "1R"}},
        {"two dimensions by the other file", with_2rr, "exp/1/pdata/1/2rr", {8452, "BRU2D", "2D:zg30", "", "2RR"}},
        {"edited parameters only", {{"fid", Points()}, {"acqu", Acqus()}}, "fid", {4100, "BRU1", "1D:zg30", "", "FID"}},
        {"a FID that begins like a number",
         {{"fid", "7\n" + Points()}, {"acqus", Acqus()}},
         "fid",
         {4100, "BRU1", "1D:zg30", "", "FID"}},
        {"foreign parameters", {{"fid", Points()}, {"acqus", Acqus("Somebody else")}}, "fid", {}},
        {"a record without its value", {{"fid", Points()}, {"acqus", Acqus("UXNMR", "##$SW_h\n")}}, "fid", {}},
        {"no parameters", {{"fid", Points()}}, "fid", {}},
        {"no origin", {{"fid", Points()}, {"acqus", "##TITLE= x\n##$TD= 4\n##END=\n"}}, "fid", {}},
        {"empty parameters", {{"fid", Points()}, {"acqus", ""}}, "fid", {}},
        {"no points", {{"fid", ""}, {"acqus", Acqus()}}, "fid", {}},
        {"parameters only", {{"1/acqus", Acqus()}}, "1", {}},
        {"a dot in the folder's name",
         {{"my.exp/fid", Points()}, {"my.exp/acqus", Acqus()}},
         "my.exp/fid",
         {4100, "BRU1", "1D:zg30", "", "FID"}},
    });
}

TEST(Detect, BrukerParametersOfTheAcquisition)
{
    struct ModeCase {
        const char* extra;
        int acq_mode, byte_order;
    };
    const ModeCase cases[] = {{"", 2, 1},
                              {"##$AQ_mod= 1\n", 0, 1},
                              {"##$AQ_mod= 2\n##$BYTORDA= 0\n", 1, 0},
                              {"##$AQ_MOD= 193\n##$BYTORDA= big\n", 2, 0}};
    for (const ModeCase& c : cases) {
        const TempFolder folder;
        WriteText(folder / "fid", Points());
        WriteText(folder / "acqus", Acqus("Bruker BioSpin GmbH", c.extra));
        ScriptedAsker asker;
        const FileType type = ReadFileType(folder.path().string(), asker, Nuclides());
        EXPECT_EQ(type.acq_mode, c.acq_mode) << c.extra;
        EXPECT_EQ(type.byte_order, c.byte_order) << c.extra;
    }
}

TEST(Detect, FlatFilesAndTheirSiblings)
{
    const Files fid{{"001001.FID", Points()}, {"001001.AQS", Acqus()}};
    const Files spectrum{{"1.1r", Points()}, {"1.fqs", Procs()}};
    CheckAll({
        {"FID", fid, "001001.FID", {4104, "BRUX1F", "1D:zg30", ".BRUA"}},
        {"FID asked for in other letters", fid, "001001.fid", {4104, "BRUX1F", "1D:zg30", ".BRUA", "", "001001.FID"}},
        {"spectrum", spectrum, "1.1r", {4360, "BRUX1D", "1D:", ".BRUP"}},
        {"series", {{"a.ser", Points()}, {"a.aqs", Acqus()}}, "a.ser", {8200, "BRUX2F", "2D:zg30", ".BRUA2"}},
        {"2D spectrum", {{"a.2rr", Points()}, {"a.fqs", Procs()}}, "a.2rr", {8456, "BRUX2D", "2D:", ".BRUP2"}},
        {"an empty sibling is none", {{"a.fid", Points()}, {"a.aqs", ""}}, "a.fid", {}},
        {"a foreign sibling", {{"a.fid", Points()}, {"a.aqs", Acqus("else")}}, "a.fid", {}},
        {"spectrum alone", {{"1.1r", Points()}}, "1.1r", {}},
    });
}

Files VarianFolder(const ProcparSample& sample = {})
{
    return {{"x.fid/fid", Points()}, {"x.fid/procpar", Procpar(sample)}};
}

TEST(Detect, VarianFoldersAndNames)
{
    const Expected fid{4102, "VAR1", "1D:", "", "FID", "x.fid/fid"};
    const Files experiment{{"exp1/curpar", Procpar()}, {"exp1/procpar", "bad"}, {"exp1/datdir/data", Points()}};
    const Files here{{"e/data", Points()}, {"e/procpar", Procpar()}, {"e/phasefile", Points()}};
    CheckAll({
        {"the FID", VarianFolder(), "x.fid/fid", fid},
        {"its folder", VarianFolder(), "x.fid", fid},
        {"a spectrum", here, "e/data", {4358, "VAR1", "1D:", "", "DATA"}},
        {"a shown spectrum", here, "e/phasefile", {4358, "VAR1", "1D:", "", "PHASEFILE"}},
        {"a spectrum in its own folder", experiment, "exp1/datdir/data", {4358, "VAR1", "1D:", "", "DATA"}},
        {"points without parameters", {{"x.fid/fid", Points()}}, "x.fid", {}},
        {"parameters only", {{"x.fid/procpar", Procpar()}}, "x.fid", {}},
        {"empty parameters", {{"fid", Points()}, {"procpar", "\n"}}, "fid", {}},
        {"cut parameters", {{"fid", Points()}, {"procpar", Procpar().substr(0, 40)}}, "fid", {}},
        {"a shown spectrum without its data", {{"phasefile", Points()}, {"procpar", Procpar()}}, "phasefile", {}},
        {"a series is nothing of Varian's", {{"ser", Points()}, {"fid", Points()}, {"procpar", Procpar()}}, "ser", {}},
    });
}

TEST(Detect, VarianRowsAreAQuestion)
{
    struct RowsCase {
        const char* name;
        ProcparSample sample;
        std::vector<Button> answers;
        std::int32_t code;
        const char* mode;
        int kind;
    };
    const RowsCase cases[] = {
        {"one row", {.rows = 1}, {}, 4102, "1D:", -1},
        {"no row count", {.rows = 0}, {}, 4102, "1D:", -1},
        {"32 rows are an array", {.rows = 32}, {Button::no}, 4102, "1D:", -1},
        {"2 rows are increments", {.rows = 2}, {Button::yes}, 8198, "V_HETERO", 4},
        {"33 rows need no question", {.rows = 33}, {}, 8198, "V_HETERO", 4},
        {"phase-sensitive", {.array = "phase", .rows = 128}, {}, 8198, "VPH_HETERO", 3},
        {"one nucleus", {.rows = 64, .decouple = "H1", .dfrq = 400}, {}, 8198, "V_HOMO", 1},
        {"no second nucleus", {.array = "phase", .rows = 64, .decouple = "", .dfrq = 0}, {}, 8198, "VPH_HOMO", 0},
        {"no second frequency", {.rows = 64, .dfrq = 0}, {}, -1, "", -1},
        {"an array of another parameter", {.array = "d2", .rows = 128}, {Button::no}, 4102, "1D:", -1},
        {"the same, said to be 2D", {.array = "d2", .rows = 128}, {Button::yes}, 8198, "V2D", 4},
    };
    for (const RowsCase& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        for (const auto& [name, content] : VarianFolder(c.sample)) WriteText(folder / name, content);
        ScriptedAsker asker = c.answers.empty() ? ScriptedAsker() : ScriptedAsker{c.answers.front()};
        const FileType type = ReadFileType(folder / "x.fid", asker, Nuclides());
        EXPECT_EQ(type.code, c.code);
        EXPECT_EQ(type.mode, c.mode);
        EXPECT_EQ(type.kind_2d, c.kind);
        ASSERT_EQ(asker.boxes.size(), c.answers.size());
        for (const MessageBox& box : asker.boxes) {
            EXPECT_EQ(box.text, "2D Data(Yes) or Array Data(No)?");
            EXPECT_EQ(box.title, "Data Type");
            EXPECT_TRUE(box.beep);
        }
    }
}

TEST(Detect, CmxFolders)
{
    const Files folder{{"c/data", Points()}, {"c/acq", CmxAcq()}};
    const Expected cmx{4105, "CMX1", "1D:1pulse", "", "DATA", "c/data"};
    CheckAll({
        {"the points", folder, "c/data", cmx},
        {"the folder", folder, "c", cmx},
        {"without parameters", {{"c/data", Points()}}, "c/data", {}},
        {"without an experiment", {{"c/data", Points()}, {"c/acq", "al=256\n"}}, "c/data", {}},
    });
}

TEST(Detect, DummiesStandForTheDataBesideThem)
{
    const auto with = [](Files files, const char* dummy) {
        files.emplace_back(dummy, "");
        return files;
    };
    const Files bruker{{"fid", Points()}, {"acqus", Acqus()}};
    const Files spectrum{{"1r", Points()}, {"procs", Procs()}};
    const Files varian{{"fid", Points()}, {"procpar", Procpar()}};
    const Files data{{"data", Points()}, {"procpar", Procpar()}};
    const Files cmx{{"data", Points()}, {"acq", CmxAcq()}};
    CheckAll({
        {"BRUF", with(bruker, "Spec.BRUF"), "Spec.BRUF", {4100, "BRU1", "1D:zg30", ".BRUF", "FID", "fid"}},
        {"BRUD", with(spectrum, "SPEC.BRUD"), "SPEC.BRUD", {4356, "BRU1", "1D:", ".BRUD", "1R", "1r"}},
        {"VARF", with(varian, "Spec.VarF"), "Spec.VarF", {4102, "VAR1", "1D:", ".VARF", "FID", "fid"}},
        {"VARD", with(data, "Spec.VarD"), "Spec.VarD", {4358, "VAR1", "1D:", ".VARD", "DATA", "data"}},
        {"CMX", with(cmx, "Spec.CMX"), "Spec.CMX", {4105, "CMX1", "1D:1pulse", ".CMX", "DATA", "data"}},
        {"with a word inside",
         {{"fid", Points()}, {"acqus", Acqus()}, {"Spec.BRUF", "BRUKER"}},
         "Spec.BRUF",
         {4100, "BRU1", "1D:zg30", ".BRUF", "FID", "fid"}},
        {"alone", {{"Spec.BRUF", "BRUKER"}}, "Spec.BRUF", {}},
        {"alone", {{"Spec.VarF", "VARIAN"}}, "Spec.VarF", {}},
        {"alone", {{"Spec.CMX", "x"}, {"acq", CmxAcq()}}, "Spec.CMX", {}},
    });
}

// --- The head

TEST(Detect, Sniff)
{
    const auto padded = [](std::string text) {
        text.resize(600, '\0');
        return text;
    };
    struct SniffCase {
        const char* name;
        std::string content;
        const char* result;
    };
    const SniffCase cases[] = {
        {"4 bytes", "VARI", "UNKNOWN"},
        {"nothing", "", "UNKNOWN"},
        {"300 bytes that begin VARIAN", "VARIAN" + std::string(294, 'x'), "VARIAN"},
        {"300 bytes that begin BRUKER", "BRUKER" + std::string(294, 'x'), "BRUKER"},
        {"301 bytes that begin VARIAN", "VARIAN" + std::string(295, 'x'), "UNKNOWN"},
        {"300 bytes of a banner", Tavo3File().first(300), ""},
        {"6 bytes of something", "JEOL.N", ""},
        {"Delta", padded("JEOL.NMR"), "ECP"},
        {"Ver.3", Tavo3File().str(), "TAV1"},
        {"Ver.3 2D", Tavo3File('2').str(), "TAV2"},
        {"Ver.4", Tavo4File().str(), "TAVX_1"},
        {"Ver.4 2D", Tavo4File({.length_2d = 19}).str(), "TAVX_2"},
        {"Ver.4, unknown version", padded("TA NMR Ver.4.02"), ""},
        {"Alice", AliceFile().str(), "ALICE"},
        {"Alice, newer", AliceFile({.newer = true}).str(), "ALICE"},
        {"Lambda", LambdaFile().str(), "LAMBDA"},
        {"Alpha", AlphaFile().str(), "ALPHA"},
        {"Nuts", NutsFile().str(), "NUTS Type1,2"},
        {"Nuts text", NutsText(), "NUTS Type3"},
        {"Aspect", MslFile().str(), "ASPECT"},
        {"DICOM", Image(400).Text(128, "DICM").str(), "IMA"},
        {"CSV word before a zero byte", padded("$CSVSTART"), "CSV TYPE 1"},
        {"CSV word before a comma", "$CSVSTART,," + std::string(400, ' '), ""},
        {"JCAMP-DX", Jcamp() + std::string(300, ' '), ""},
        {"table", CsvRows(), "CSV TYPE 0"},
        {"one column", CsvRows(""), "CSV TYPE 0"},
        {"table behind blanks", "   1,2\n" + CsvRows(), "CSV TYPE 0"},
        {"table behind a line feed", "\n1,2\n" + CsvRows(), "UNKNOWN"},
        {"long token", std::string(10, '1') + "," + CsvRows(), "UNKNOWN"},
        {"short word", "Time,Amplitude\n" + CsvRows(), ""},
        {"points that begin like a digit", padded("1"), "UNKNOWN"},
        {"only blanks", std::string(400, ' '), ""},
        {"points", Points(), "UNKNOWN"},
    };
    for (const SniffCase& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        WriteText(folder / "x", c.content);
        const Result<std::string> sniff = ReadDataMode(folder / "x");
        ASSERT_TRUE(sniff);
        EXPECT_EQ(*sniff, c.result);
    }
}

TEST(Detect, NutsLabelBeyondTheFirstHead)
{
    const TempFolder folder;
    WriteText(folder / "x.dx", "##TITLE=" + std::string(100000, 'x') + "\n##JCAMP-DXB= 1\n##END=\n");
    const Result<std::string> sniff = ReadDataMode(folder / "x.dx");
    ASSERT_TRUE(sniff);
    EXPECT_EQ(*sniff, "NUTS Type3");
}

// --- Bad input

TEST(Detect, WhatCannotBeReadIsReportedAndRefused)
{
    const TempFolder folder;
    std::filesystem::create_directories(folder / "folder");
    std::filesystem::create_directories(folder / "as_folder/fid");
    ASSERT_EQ(mkfifo((folder / "pipe.jdf").c_str(), 0600), 0);
    struct PathCase {
        const char* path;
        std::size_t boxes;
    };
    for (const PathCase& c : {PathCase{"missing.jdf", 1}, PathCase{"no/such/folder", 1}, PathCase{"pipe.jdf", 1},
                              PathCase{"folder", 0}, PathCase{"as_folder", 0}}) {
        SCOPED_TRACE(c.path);
        ScriptedAsker asker;
        EXPECT_EQ(ReadFileType(folder / c.path, asker, Nuclides()).code, -1);
        ASSERT_EQ(asker.boxes.size(), c.boxes);
        for (const MessageBox& box : asker.boxes)
            EXPECT_NE(box.text.find("ReadDataMode/1DDRW"), std::string::npos) << box.text;
    }
    ScriptedAsker asker;
    EXPECT_EQ(ReadFileType("", asker, Nuclides()).code, -1);
    EXPECT_EQ(ReadFileType(std::string("a\0b", 3), asker, Nuclides()).code, -1);
    const Result<std::string> sniff = ReadDataMode(folder / "missing");
    ASSERT_FALSE(sniff);
    EXPECT_EQ(sniff.error().where, "ReadDataMode/1DDRW");
}

TEST(Detect, TwoNamesThatDifferInCaseAreToldApart)
{
    const TempFolder folder;
    WriteText(folder / "X.DX", Jcamp("NMR FID"));
    WriteText(folder / "x.dx", Jcamp());
    ScriptedAsker asker;
    EXPECT_EQ(ReadFileType(folder / "X.DX", asker, Nuclides()).code, 4109);
    EXPECT_EQ(ReadFileType(folder / "x.dx", asker, Nuclides()).code, 4365);
}

std::vector<std::string> AllSamples()
{
    return {AliceFile().str(),
            LambdaFile(2).str(),
            AlphaFile(1).str(),
            DeltaFile().str(),
            NutsFile().str(),
            NutsText(),
            MslFile().str(),
            MacFile().str(),
            Tavo3File().str(),
            Tavo4File().str(),
            ExHeader(),
            PackedExHeader(),
            Acqus(),
            Procs(),
            Procpar({.array = "phase", .rows = 64}),
            Jcamp(),
            CsvRows(),
            GeHeader(),
            CmxAcq(),
            DeltaFile({.dimensions = 2}).str()};
}

/// Whatever is cut off a file, and whichever probe is asked: an answer, and no byte read beyond the
/// end (the sanitizers see to that).
TEST(Detect, EveryProbeBearsEveryCutOfEverySample)
{
    QuietAnswers asker(Button::yes);
    const ProbeContext context{asker, Nuclides()};
    for (const std::string& sample : AllSamples()) {
        const std::size_t step = std::max<std::size_t>(sample.size() / 200, 1);
        for (std::size_t size = 0; size <= sample.size(); size += step) {
            const std::vector<char> exact(sample.begin(), sample.begin() + static_cast<std::ptrdiff_t>(size));
            const ByteSpan bytes = std::as_bytes(std::span(exact));
            const Sniff sniff = SniffDataMode(bytes, exact.size());
            EXPECT_FALSE(sniff.needs_more) << "the whole file was given";
            for (const ProbeRow& row : Probes()) {
                const ProbeAnswer answer = row.probe(bytes, context);
                const bool sound = answer.status == 0 ? answer.spectrum_flag <= 1 && !answer.mode.empty()
                                                      : answer.mode.empty() || answer.mode == "ERR";
                EXPECT_TRUE(sound) << row.name << " at " << size << " gave " << answer.mode;
            }
        }
    }
}

TEST(Detect, NoProbeTakesTheFileOfAnotherBinaryFamily)
{
    struct Owner {
        std::string_view probe;
        std::string content;
    };
    const Owner owners[] = {
        {"ReadModeAls", AliceFile().str()},   {"ReadModeLambda", LambdaFile().str()},
        {"ReadModeECP", DeltaFile().str()},   {"ReadModeAlpha", AlphaFile().str()},
        {"ReadModeNut", NutsFile().str()},    {"ReadModeTavo3", Tavo3File().str()},
        {"ReadModeTavo4", Tavo4File().str()}, {"ReadModeMSL", MslFile().str()},
        {"ReadModeJCAMP", Jcamp()},           {"ReadModeBruker", Acqus()},
        {"ReadModeVarian", Procpar()},
    };
    QuietAnswers asker(Button::yes);
    const ProbeContext context{asker, Nuclides()};
    for (const Owner& owner : owners) {
        for (const ProbeRow& row : Probes()) {
            const bool own = row.name.starts_with(owner.probe);
            const bool has_no_signature = row.name == "ReadModeMac";
            if (has_no_signature) continue;
            const int status = row.probe(std::as_bytes(std::span(owner.content)), context).status;
            EXPECT_EQ(status == 0, own) << row.name << " on the sample of " << owner.probe;
        }
    }
}

TEST(Detect, VarianRecords)
{
    const auto read = [](std::string_view text) {
        std::size_t position = 0;
        return Varian_Line(std::as_bytes(std::span(text)), position);
    };
    const std::string head = " 2 2 8 0 0 2 1 0 1 64\n";
    using Values = std::vector<std::string>;
    EXPECT_EQ(read("a" + head + "2 \"x\"\n\"y z\"\n0\n").values, (Values{"x", "y z"}));
    EXPECT_EQ(read("a" + head + "1 \"two\nlines\"\n2 \"y\" \"n\"\n").values, (Values{"two\nlines"}));
    EXPECT_EQ(read("a" + head + R"(1 "a \"b\" c:\d")" + "\n0\n").values, (Values{"a \"b\" c:\\d"}));
    EXPECT_EQ(read("a 1 1 1e18 -1e18 0 2 1 0 1 64\n3 1 2.5 -3e-3\n0\n").values, (Values{"1", "2.5", "-3e-3"}));
    EXPECT_EQ(read("  \n").name, "");
    for (const std::string& bad :
         {"a" + head + "1 \"open\n0\n", "a" + head + "1000000000 \"x\"\n", "a" + head + "-1 \"x\"\n0\n",
          "a" + head + "1 word\n0\n", "a" + head, "a" + head + "1 \"x\"\n", std::string("a 2 2 8\n"),
          std::string("a b c d e f g h i j k\n1 2\n0\n")})
        EXPECT_EQ(read(bad).name, "ERROR:") << bad;
}

TEST(Detect, KeysAndValues)
{
    struct Line {
        const char* line;
        bool key_there;
        const char* key;
        const char* value;
    };
    const Line lines[] = {
        {"KEY value", true, "KEY", "value"},
        {"KEY=value", true, "KEY", "value"},
        {" KEY  =  a b ", true, "KEY", "a b"},
        {"KEY", true, "KEY", ""},
        {"KEY\tvalue", true, "KEY", "value"},
        {"KEY=", true, "KEY", ""},
        {"KEY = a=b", true, "KEY", "a=b"},
        {"=value", false, "", ""},
        {"", false, "", ""},
    };
    for (const Line& l : lines) {
        std::string key, value;
        EXPECT_EQ(Split_KeyValue(l.line, key, value), l.key_there) << l.line;
        EXPECT_EQ(key, l.key) << l.line;
        EXPECT_EQ(value, l.value) << l.line;
    }
}

} // namespace
} // namespace nmr::test
