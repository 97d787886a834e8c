// Every published set of the collection gives the code that its description says, or is refused.

#include "core/quiet_answers.h"
#include "core/text.h"
#include "formats/detect.h"
#include "support/files.h"
#include "support/scripted_asker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace nmr::test {
namespace {

enum class Asked { nothing, array };

struct RealCase {
    const char* path; ///< below the collection; "folder/*" for every file of it
    std::int32_t code;
    const char* mode = "";
    const char* data_file = ""; ///< of a folder
    int byte_order = 0;
    Asked asked = Asked::nothing;
};

constexpr std::int32_t kBrukerFid = 4100, kBrukerSpectrum = 4356, kFlatFid = 4104, kFlatSpectrum = 4360;
constexpr std::int32_t kVarianFid = 4102, kDeltaFid = 4099, kDeltaSpectrum = 4355;
constexpr std::int32_t kJcampFid = 4109, kJcampSpectrum = 4365, kCsv = 4110, kCmx = 4105;

constexpr RealCase kBruker[] = {
    {"bruker-1h-fid-aspirin-300", kBrukerFid, "1D:zg30", "fid", 1},
    {"bruker-1h-fid-aspirin-300/fid", kBrukerFid, "1D:zg30", "", 1},
    {"bruker-1h-fid-aspirin-300/pdata/1", kBrukerSpectrum, "1D:zg30", "1r", 0},
    {"bruker-1h-fid-coffee-400", kBrukerFid, "1D:zg30", "fid", 0},
    {"bruker-1h-fid-coffee-400/pdata/1/1r", kBrukerSpectrum, "1D:zg30", "", 0},
    {"bruker-1h-noesy-coffee-400", kBrukerFid, "1D:noesygpps1d.comp", "fid", 0},
    {"bruker-13c-fid-gaba-500", kBrukerFid, "1D:zgpg", "fid", 0},
    {"bruker-31p-fid-600", kBrukerFid, "1D:zgig.bb", "fid", 1},
    {"bruker-31p-fid-600/pdata/1", kBrukerSpectrum, "1D:zgig.bb", "1r", 1},
    {"bruker-13c-fid-600", kBrukerFid, "1D:zgig.bb", "fid", 1},
    {"bruker-13c-fid-600/pdata/1", kBrukerSpectrum, "1D:zgig.bb", "1r", 0},
    {"bruker-1h-fid-strychnine-400", kBrukerFid, "1D:zg30", "fid", 0},
    {"bruker-13c-fid-dspfvs-minus1-600", kBrukerFid, "1D:zgpg30", "fid", 0},
    {"bruker-1h-noesy-urine-700-be", kBrukerFid, "1D:noesypr1d", "fid", 1},
    {"bruker-25mg-fid-float64", kBrukerFid, "1D:qcpmg.jt", "fid", 0},
    {"bruker-1h-fid-odnp-labelled-15n", kBrukerFid, "1D:zg", "fid", 1},
    {"bruker-1h-fid-odnp-labelled-15n/pdata/999", kBrukerSpectrum, "1D:zg", "1r", 0},
    {"bruker-1h-fid-pulsecal", kBrukerFid, "1D:pulsecal", "fid", 0},
    {"bruker-1h-processed-only-aspirin", kBrukerSpectrum, "1D:zg30", "pdata/1/1r", 0},
    {"bruker-odd-parameters-only", -1},
    {"bruker-1h-t1-inversion-recovery", 8196, "2D:t1ir", "ser", 0},
    {"bruker-1h-t1-inversion-recovery/pdata/1", 8452, "2D:t1ir", "2rr", 0},
    {"bruker-2d-hsqc", 8196, "2D:hsqcedetgpsp.3", "ser", 0},
    {"bruker-flat-23na/001001.FID", kFlatFid, "1D:zg4pm.rel"},
    {"bruker-flat-23na/001001.1R", kFlatSpectrum, "1D:"},
    {"bruker-flat-23na/001002.1r", kFlatSpectrum, "1D:"},
    {"bruker-flat-23na/001001.1I", -1},
    {"derived-truncated/bruker", kBrukerFid, "1D:zg30", "fid", 1}, // the cut shows when it is read
};

constexpr RealCase kOthers[] = {
    {"varian-13c-fid-600-float", kVarianFid, "1D:", "fid"},
    {"varian-1h-fid-ketobutyrate-int32", kVarianFid, "1D:", "fid"},
    {"varian-1h-fid-ethylindanone/fid", kVarianFid, "1D:"},
    {"varian-31p-fid-float-600", kVarianFid, "1D:", "fid"},
    {"varian-1h-fid-status-4104", kVarianFid, "1D:", "fid"},
    {"varian-31p-fid-array-kinetics", kVarianFid, "1D:", "fid", 0, Asked::array},
    {"varian-1h-fid-array-4rows", kVarianFid, "1D:", "fid", 0, Asked::array},
    {"varian-87rb-t1-saturation-recovery", kVarianFid, "1D:", "fid", 0, Asked::array},
    {"varian-2d-hsqc", 8198, "VPH_HETERO", "fid"},
    {"varian-odd-procpar-only", -1},
    {"derived-truncated/varian", kVarianFid, "1D:", "fid"},
    {"cmx-1d-fid", kCmx, "1D:shuttle_1pulse_heat", "data"},
    {"cmx-1d-fid/data", kCmx, "1D:shuttle_1pulse_heat"},
    {"jeol-1h-fid-rutin-400/*", kDeltaFid, "1D:single_pulse_dec"},
    {"jeol-13c-fid-rutin-400/*", kDeltaFid, "1D:carbon.jxp"},
    {"jeol-19f-fid-500/*", kDeltaFid, "1D:single_pulse.jxp"},
    {"jeol-1h-fid-chloroform-600/*", kDeltaFid, "1D:single_pulse.jxp"},
    {"derived-jeol-big-endian/*", kDeltaFid, "1D:single_pulse.jxp"},
    {"jeol-1h-spectrum-ppm-400/*", kDeltaSpectrum, "1D:single_pulse_dec"},
    {"jeol-1h-spectrum-hz-ethanol-90/*", kDeltaSpectrum, "1D:"},
    {"jeol-2d-hsqc/*", 0x2003, "VPH_HETERO:gc2hsqcse"},
    {"derived-truncated/jeol.jdf", kDeltaFid, "1D:single_pulse.jxp"},
    {"derived-truncated/jeol-head-only.jdf", -1},
    {"derived-truncated/empty.jdf", -1},
    {"ascii-fid-3column/*", kCsv, "1D:"},
    {"ascii-spectrum-columns/*", kCsv, "1D:"},
    {"csv-fid-rows-benchtop/*", kCsv, "1D:"},
    {"csv-fid-semicolon-decimal-comma/*", kCsv, "1D:"}, // begins with a line of headings
};

constexpr RealCase kJcamp[] = {
    {"jcamp-iupac-asdf-set/BRUKAFFN.DX", kJcampSpectrum, "1D:baxcotest.be"},
    {"jcamp-iupac-asdf-set/BRUKPAC.DX", kJcampSpectrum, "1D:baxcotest.be"},
    {"jcamp-iupac-asdf-set/BRUKSQZ.DX", kJcampSpectrum, "1D:baxcotest.be"},
    {"jcamp-iupac-asdf-set/BRUKDIF.DX", kJcampSpectrum, "1D:baxcotest.be"},
    {"jcamp-iupac-asdf-set/BRUKNTUP.DX", kJcampSpectrum, "1D:baxcotest.be"},
    {"jcamp-iupac-asdf-set/TESTFID.DX", kJcampFid, "1D:JCAMP-DX"},
    {"jcamp-iupac-asdf-set/TESTNTUP.DX", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-iupac-asdf-set/TESTSPEC.DX", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-iupac-asdf-set/TEST32.DX", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-1h-forms-200/o01.jdx", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-1h-forms-200/o07.jdx", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-1h-forms-200/ofid1.jdx", kJcampFid, "1D:JCAMP-DX"},
    {"jcamp-1h-forms-200/ofid3.jdx", kJcampFid, "1D:JCAMP-DX"},
    {"jcamp-1h-compression-400/*", kJcampSpectrum, "1D:zg"},
    {"jcamp-1h-aspirin-bruker/1h.dx", kJcampSpectrum, "1D:zg30"},
    {"jcamp-1h-aspirin-bruker/1h.fid.dx", kJcampFid, "1D:zg30"},
    {"jcamp-1h-spectrum-jeol-block/*", kJcampSpectrum, "1D:NON"},
    {"jcamp-1h-spectrum-varian-ppm/*", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-1h-fid-benchtop/*", kJcampFid, "1D:JCAMP-DX"},
    {"jcamp-1h-fid-benchtop-80/*", kJcampFid, "1D:JCAMP-DX"},
    {"jcamp-1h-pseudo2d-t1-benchtop/*", 0x200D, "2D:JCAMP-DX"},
    {"jcamp-1h-t1-pseudo2d/*", 0x210D, "2D:t1ir"},
    {"jcamp-2d-cosy-ppm/*", 0x210D, "2D:JCAMP-DX"},
    {"jcamp-1h-spectrum-assignments-ethanol/*", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-1h-link-fid-and-spectrum/*", kJcampFid, "1D:zg30"},
    {"jcamp-1h-spectrum-triangle-ppm/*", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-13c-dept-set-cytisine/13c.fid.dx", kJcampFid, "1D:zgdc30"},
    {"jcamp-13c-dept-set-cytisine/dept45.fid.dx", kJcampFid, "1D:dept45"},
    {"jcamp-13c-dept-set-cytisine/dept90.fid.dx", kJcampFid, "1D:dept90"},
    {"jcamp-13c-dept-set-cytisine/dept135.fid.dx", kJcampFid, "1D:dept135"},
    {"jcamp-19f-fluoromethylbenzylamine/19f.fid.dx", kJcampFid, "1D:zg"},
    {"jcamp-19f-fluoromethylbenzylamine/19f1h-dec.fid.dx", kJcampFid, "1D:zgdc30"},
    {"jcamp-19f-fluoromethylbenzylamine/19f1h-dec.dx", kJcampSpectrum, "1D:zgdc30"},
    {"jcamp-31p-phosphineoxide/31p.fid.dx", kJcampFid, "1D:zgpg"},
    {"jcamp-31p-phosphineoxide/31p.dx", kJcampSpectrum, "1D:zgpg"},
    {"jcamp-1h-t1-series/*", kJcampSpectrum, "1D:t1ir"},
    {"jcamp-1h-t2-series/*", kJcampSpectrum, "1D:cpmg"},
    {"jcamp-13c-1h-rutin-spectra/*", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-odd-empty-headers/*", kJcampFid, "1D:zg30"},
    {"jcamp-odd-delta-export/*", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-not-nmr-infrared/*", -1},
    {"jcamp-odd-files/mestrec-jcamp-256.jdx", kJcampSpectrum, "1D:JCAMP-DX"},
    {"jcamp-odd-files/structure-tree.jdx", -1},
    {"jcamp-odd-files/structure-ntuples.jdx", -1},
    {"jcamp-odd-files/compression-small-jcamp-fix.dx", -1}, // no data type
    {"derived-truncated/jcamp-table-cut.jdx", kJcampSpectrum, nullptr},
    {"derived-truncated/jcamp-ntuples-cut.jdx", kJcampFid, nullptr},
    {"derived-truncated/empty.dx", -1},
};

/// The paths of a row.
std::vector<std::filesystem::path> Paths(const RealCase& c)
{
    const std::filesystem::path path = RealData("README.md").parent_path() / c.path;
    if (path.filename() != "*") return {path};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path())) files.push_back(entry.path());
    return files;
}

void Check(const RealCase& c, const std::filesystem::path& path)
{
    SCOPED_TRACE(path.string());
    static const NuclearTable kNuclides = NuclearTable::BuiltIn();
    ScriptedAsker asker = c.asked == Asked::array ? ScriptedAsker{Button::no} : ScriptedAsker();
    const FileType type = ReadFileType(path.string(), asker, kNuclides);
    EXPECT_EQ(type.code, c.code);
    EXPECT_EQ(asker.boxes.size(), c.asked == Asked::nothing ? 0U : 1U);
    if (c.code < 0) return;
    EXPECT_EQ(type.mode, c.mode == nullptr ? type.mode : c.mode);
    EXPECT_EQ(type.byte_order, c.byte_order);
    const std::string data_file = *c.data_file == '\0' ? path.string() : (path / c.data_file).string();
    EXPECT_TRUE(EqualsNoCase(type.path, data_file)) << type.path;
    EXPECT_TRUE(std::filesystem::is_regular_file(type.path));
}

void CheckAll(std::span<const RealCase> cases)
{
    for (const RealCase& c : cases)
        for (const auto& path : Paths(c)) Check(c, path);
}

TEST(RealDetect, BrukerSets)
{
    NMR1D_REAL_DATA(readme, "README.md");
    CheckAll(kBruker);
}

TEST(RealDetect, VarianJeolCmxAndTextSets)
{
    NMR1D_REAL_DATA(readme, "README.md");
    CheckAll(kOthers);
}

TEST(RealDetect, JcampSets)
{
    NMR1D_REAL_DATA(readme, "README.md");
    CheckAll(kJcamp);
}

/// No file of the collection, data or not, does more harm than being refused.
TEST(RealDetect, AnyFileGivesAnAnswer)
{
    NMR1D_REAL_DATA(readme, "README.md");
    const NuclearTable nuclides = NuclearTable::BuiltIn();
    QuietAnswers asker(Button::no);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(readme.parent_path())) {
        const FileType type = ReadFileType(entry.path().string(), asker, nuclides);
        EXPECT_EQ(type.code > 0, type.tag != "ERR") << entry.path();
    }
}

} // namespace
} // namespace nmr::test
