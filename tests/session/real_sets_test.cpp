// Every published set, read as a user reads it: what the detection says, what the fields hold, and where
// the strongest lines stand after the transform; or the words of the refusal. The figures were measured
// outside this program and stand in the collection's own description.

#include "core/numbers.h"
#include "core/text.h"
#include "session/obliging_asker.h"
#include "session/rig.h"

#include <cmath>
#include <map>
#include <set>

namespace nmr::test {
namespace {

enum class Kind { fid, spectrum };
constexpr Kind kFid = Kind::fid, kSpectrum = Kind::spectrum;

struct RealSet {
    const char* path;
    int family;
    Kind kind;
    const char* nucleus;  ///< empty where the file does not tell it
    double mhz, width_hz; ///< 0: not told
    std::int32_t points;  ///< complex points of a FID, points of a spectrum
    std::int32_t rows;
    int block;                    ///< of a file of several
    std::vector<double> lines;    ///< ppm: the largest magnitude of a FID, the three highest maxima of a spectrum
    bool hz_from_carrier = false; ///< of the line, where the file has no reference
};

// clang-format off
const RealSet kSets[] = {
    {"bruker-1h-fid-aspirin-300/fid", 4, kFid, "1H", 300.132251, 4789.272, 8192, 1, 0, {2.2942}},
    {"bruker-1h-fid-aspirin-300/pdata/1/1r", 4, kSpectrum, "1H", 300.132251, 4789.272, 32768, 1, 0, {2.2942, 7.2804, 7.0822}},
    {"bruker-1h-fid-coffee-400/fid", 4, kFid, "1H", 400.131882, 8223.684, 32768, 1, 0, {3.3690}},
    {"bruker-1h-fid-coffee-400/pdata/1/1r", 4, kSpectrum, "1H", 400.131882, 8223.684, 32768, 1, 0, {3.3703, 4.9044, 3.5421}},
    {"bruker-1h-noesy-coffee-400/fid", 4, kFid, "1H", 400.131882, 8223.684, 32768, 1, 0, {3.1769}},
    {"bruker-1h-noesy-coffee-400/pdata/1/1r", 4, kSpectrum, "1H", 400.131882, 8223.684, 131072, 1, 0, {3.1770, 3.5282, -0.0000}},
    {"bruker-13c-fid-gaba-500/fid", 4, kFid, "13C", 125.776651, 27573.529, 16384, 1, 0, {37.1800}},
    {"bruker-13c-fid-gaba-500/pdata/1/1r", 4, kSpectrum, "13C", 125.776651, 27573.529, 32768, 1, 0, {37.1799, 26.4478, 42.1512}},
    {"bruker-31p-fid-600/fid", 4, kFid, "31P", 242.937185, 14619.883, 8771, 1, 0, {2.7724}},
    {"bruker-31p-fid-600/pdata/1/1r", 4, kSpectrum, "31P", 242.937185, 14619.883, 65536, 1, 0, {2.7770, 0.4391, 4.1966}},
    {"bruker-13c-fid-600/fid", 4, kFid, "13C", 150.917839, 30303.030, 18180, 1, 0, {76.6361}},
    {"bruker-13c-fid-600/pdata/1/1r", 4, kSpectrum, "13C", 150.917839, 30303.030, 32768, 1, 0, {76.6269, 70.4190, 61.4226}},
    {"bruker-1h-fid-strychnine-400/fid", 4, kFid, "1H", 400.132471, 9615.385, 40063, 1, 0, {-0.0002}},
    {"bruker-1h-fid-strychnine-400/pdata/1/1r", 4, kSpectrum, "1H", 400.132471, 9615.385, 131072, 1, 0, {3.8463, 0.0000, 1.9012}},
    {"bruker-13c-fid-dspfvs-minus1-600/fid", 4, kFid, "13C", 150.919408, 36057.692, 53994, 1, 0, {180.9825}},
    {"bruker-13c-fid-dspfvs-minus1-600/pdata/1/1r", 4, kSpectrum, "13C", 150.919408, 36057.692, 262144, 1, 0, {180.9853, 77.0196, 172.7079}},
    {"bruker-1h-noesy-urine-700-be/fid", 4, kFid, "1H", 699.873291, 14005.602, 32768, 1, 0, {-0.0001}},
    {"bruker-1h-noesy-urine-700-be/pdata/1/1r", 4, kSpectrum, "1H", 699.873291, 14005.602, 65536, 1, 0, {-0.0001, 3.0476, 4.7671}},
    {"bruker-25mg-fid-float64/fid", 4, kFid, "25MG", 48.981038, 250000.000, 51200, 1, 0, {4.8676}},
    {"bruker-1h-fid-odnp-labelled-15n/fid", 4, kFid, "15N", 14.831413, 75187.970, 8192, 1, 0, {}},
    {"bruker-1h-fid-odnp-labelled-15n/pdata/1/1r", 4, kSpectrum, "15N", 14.831413, 75187.970, 16384, 1, 0, {4.0224, 1340.0903, 1468.8082}},
    {"bruker-1h-fid-odnp-labelled-15n/pdata/999/1r", 4, kSpectrum, "15N", 14.831413, 75187.970, 16384, 1, 0, {1644.8672, 1844.4420, 2044.9450}},
    {"bruker-1h-fid-pulsecal/fid", 4, kFid, "1H", 400.131348, 5000.000, 2048, 1, 0, {}},
    {"bruker-1h-fid-pulsecal/pdata/1/1r", 4, kSpectrum, "1H", 400.131348, 5000.000, 16384, 1, 0, {-1.5650, 1.5658, 2.1729}},
    {"bruker-1h-processed-only-aspirin/pdata/1/1r", 4, kSpectrum, "1H", 300.132251, 4789.272, 32768, 1, 0, {2.2942, 7.2804, 7.0822}},
    {"bruker-1h-t1-inversion-recovery/ser", 4, kFid, "1H", 600.201520, 3607.504, 4096, 10, 0, {3.4631}},
    {"varian-13c-fid-600-float/fid", 6, kFid, "13C", 150.8341007, 37878.788, 32768, 1, 0, {77.0037}},
    {"varian-1h-fid-ketobutyrate-int32/fid", 6, kFid, "1H", 599.4094446, 7200.072, 28800, 1, 0, {1.0462}},
    {"varian-1h-fid-ethylindanone/fid", 6, kFid, "1H", 499.6961869, 8012.821, 16384, 1, 0, {1.0218}},
    {"varian-31p-fid-float-600/fid", 6, kFid, "31P", 242.8758083, 12143.291, 16384, 1, 0, {1.5627}},
    {"varian-1h-fid-status-4104/fid", 6, kFid, "1H", 14.6045652, 50000.000, 2048, 1, 0, {-1375.2235}},
    {"varian-31p-fid-array-kinetics/fid", 6, kFid, "31P", 161.8947806, 9713.453, 15542, 24, 0, {0.5692}},
    {"varian-1h-fid-array-4rows/fid", 6, kFid, "1H", 499.4091680, 9000.900, 16384, 4, 0, {3.3176}},
    {"varian-87rb-t1-saturation-recovery/fid", 6, kFid, "87RB", 196.3444528, 192307.692, 1923, 12, 0, {-74.1730}},
    {"jeol-1h-fid-rutin-400/Rutin_3080ug200uL_DMSOd6_qHNMR_400MHz_Jeol.jdf", 3, kFid, "1H", 399.782198, 10016.026, 32768, 1, 0, {2.4617}},
    {"jeol-13c-fid-rutin-400/Rutin_3080ug200uL_DMSOd6_13CNMR_400MHz_Jeol.jdf", 3, kFid, "13C", 100.525303, 31565.657, 32768, 1, 0, {40.0408}},
    {"jeol-19f-fid-500/fluorine.jdf", 3, kFid, "19F", 470.363508, 120192.308, 32768, 1, 0, {-53.5813}},
    {"jeol-1h-spectrum-ppm-400/PM032220_3000U200U_Bin_180218_qH-1-4.jdf", 3, kSpectrum, "1H", 399.782198, 0, 104858, 1, 0, {4.8131, 3.2833, 3.3220}},
    {"jeol-1h-spectrum-hz-ethanol-90/proton-NMR-spectrumHz-1.jdf", 3, kSpectrum, "1H", 89.562405, 0, 16384, 1, 0, {1.2265, 3.6521, 1.3033}},
    {"jeol-1h-fid-chloroform-600/50percCHCL3.jdf", 3, kFid, "1H", 600.172305, 62500.000, 16384, 1, 0, {7.6781}},
    {"jcamp-iupac-asdf-set/BRUKAFFN.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6298, 137.1768, 134.8971}},
    {"jcamp-iupac-asdf-set/BRUKPAC.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6298, 137.1768, 134.8971}},
    {"jcamp-iupac-asdf-set/BRUKSQZ.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6298, 137.1768, 134.8971}},
    {"jcamp-iupac-asdf-set/BRUKDIF.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6298, 137.1768, 134.8971}},
    {"jcamp-iupac-asdf-set/BRUKNTUP.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6298, 137.1768, 134.8971}},
    {"jcamp-iupac-asdf-set/TESTFID.DX", 13, kFid, "13C", 100.400000, 24038.500, 16384, 1, 0, {1752.563}, true},
    {"jcamp-iupac-asdf-set/TESTNTUP.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6236, 137.1705, 134.8907}},
    {"jcamp-iupac-asdf-set/TESTSPEC.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6236, 137.1705, 134.8907}},
    {"jcamp-iupac-asdf-set/TEST32.DX", 13, kSpectrum, "13C", 100.400000, 0, 16384, 1, 0, {137.6236, 137.1705, 134.8907}},
    {"jcamp-1h-forms-200/o01.jdx", 13, kSpectrum, "1H", 200.136000, 0, 8192, 1, 0, {-0.0040, 7.3269, 7.2980}},
    {"jcamp-1h-forms-200/o02.jdx", 13, kSpectrum, "1H", 200.136000, 0, 8192, 1, 0, {-0.0040, 7.3269, 7.2980}},
    {"jcamp-1h-forms-200/o03.jdx", 13, kSpectrum, "1H", 200.136000, 0, 8192, 1, 0, {-0.0040, 7.3269, 7.2980}},
    {"jcamp-1h-forms-200/o04.jdx", 13, kSpectrum, "1H", 200.136000, 0, 8192, 1, 0, {-0.0040, 7.3269, 7.2980}},
    {"jcamp-1h-forms-200/o05.jdx", 13, kSpectrum, "1H", 200.136000, 0, 8192, 1, 0, {-0.0040, 7.3269, 7.2980}},
    {"jcamp-1h-forms-200/o07.jdx", 13, kSpectrum, "1H", 200.136000, 0, 8192, 1, 0, {-0.0040, 7.3269, 7.2980}},
    {"jcamp-1h-forms-200/ofid1.jdx", 13, kFid, "1H", 200.133000, 2792.989, 8192, 1, 0, {-995.037}, true},
    {"jcamp-1h-forms-200/ofid3.jdx", 13, kFid, "1H", 200.133000, 2792.989, 8192, 1, 0, {-995.037}, true},
    {"jcamp-1h-compression-400/jcamp-fix.dx", 13, kSpectrum, "1H", 400.132130, 0, 16384, 1, 0, {2.5446, 3.8678, 3.6690}},
    {"jcamp-1h-compression-400/jcamp-packed.dx", 13, kSpectrum, "1H", 400.132130, 0, 16384, 1, 0, {2.5446, 3.8678, 3.6690}},
    {"jcamp-1h-compression-400/jcamp-squeezed.dx", 13, kSpectrum, "1H", 400.132130, 0, 16384, 1, 0, {2.5446, 3.8678, 3.6690}},
    {"jcamp-1h-compression-400/jcamp-difdup.dx", 13, kSpectrum, "1H", 400.132130, 0, 16384, 1, 0, {2.5446, 3.8678, 3.6690}},
    {"jcamp-1h-aspirin-bruker/1h.dx", 13, kSpectrum, "1H", 300.132251, 0, 32768, 1, 0, {2.2942, 7.2804, 7.0817}},
    {"jcamp-1h-aspirin-bruker/1h.fid.dx", 13, kFid, "1H", 300.132251, 4789.272, 8192, 1, 0, {2.2942}},
    {"jcamp-1h-spectrum-jeol-block/1h.dx", 13, kSpectrum, "1H", 399.784494, 0, 16384, 1, 0, {2.6123, 2.2072, 3.4567}},
    {"jcamp-1h-spectrum-varian-ppm/1h.jdx", 13, kSpectrum, "1H", 299.932856, 0, 16384, 1, 0, {8.9278, 7.2640, -0.0015}},
    {"jcamp-1h-fid-benchtop/1h.jdx", 13, kFid, "1H", 60.123969, 862.069, 2048, 1, 0, {0.9522}},
    {"jcamp-1h-pseudo2d-t1-benchtop/pseudoT1.jdx", 13, kFid, "1H", 60.122689, 0, 2048, 8, 0, {}},
    {"jcamp-1h-spectrum-assignments-ethanol/ethanol_nmr.jdx", 13, kSpectrum, "1H", 300.031800, 0, 16384, 1, 0, {1.2480, 1.8091, 3.7098}},
    {"jcamp-1h-link-fid-and-spectrum/1h.dx", 13, kFid, "1H", 300.132251, 4789.272, 8192, 1, 1, {2.2942}},
    {"jcamp-1h-link-fid-and-spectrum/1h.dx", 13, kSpectrum, "1H", 300.132251, 0, 32768, 1, 2, {2.2942, 7.2804, 7.0817}},
    {"jcamp-13c-dept-set-cytisine/13c.fid.dx", 13, kFid, "13C", 150.935503, 36057.692, 131072, 1, 0, {53.5090}},
    {"jcamp-13c-dept-set-cytisine/dept45.fid.dx", 13, kFid, "13C", 150.935503, 36057.692, 131072, 1, 0, {49.6520}},
    {"jcamp-13c-dept-set-cytisine/dept90.fid.dx", 13, kFid, "13C", 150.935503, 36057.692, 131072, 1, 0, {104.4737}},
    {"jcamp-13c-dept-set-cytisine/dept135.fid.dx", 13, kFid, "13C", 150.935503, 36057.692, 131072, 1, 0, {49.6547}},
    {"jcamp-19f-fluoromethylbenzylamine/19f.fid.dx", 13, kFid, "19F", 376.455169, 22522.523, 65536, 1, 0, {-116.4397}},
    {"jcamp-19f-fluoromethylbenzylamine/19f1h-dec.fid.dx", 13, kFid, "19F", 376.454530, 22522.523, 32768, 1, 0, {-116.4420}},
    {"jcamp-19f-fluoromethylbenzylamine/19f1h-dec.dx", 13, kSpectrum, "19F", 376.454530, 0, 65536, 1, 0, {-116.4420, -116.8518, -116.2037}},
    {"jcamp-31p-phosphineoxide/31p.fid.dx", 13, kFid, "31P", 202.456085, 30303.030, 32768, 1, 0, {44.7209}},
    {"jcamp-31p-phosphineoxide/31p.dx", 13, kSpectrum, "31P", 202.456085, 0, 32768, 1, 0, {44.7186, 44.3577, 45.0840}},
    {"jcamp-1h-t1-series/1H_t1_100ms.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.5196, 3.5710, 3.5849}},
    {"jcamp-1h-t1-series/1H_t1_250ms.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4389, 3.5365, 3.5145}},
    {"jcamp-1h-t1-series/1H_t1_500ms.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4470, 0.8364, 0.8262}},
    {"jcamp-1h-t1-series/1H_t1_1s.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4631, 0.8563, 0.8438}},
    {"jcamp-1h-t1-series/1H_t1_2s.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4631, 0.8563, 0.8438}},
    {"jcamp-1h-t1-series/1H_t1_3s.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4631, 0.8563, 0.8438}},
    {"jcamp-1h-t1-series/1H_t1_4s.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4631, 0.8563, 0.8438}},
    {"jcamp-1h-t1-series/1H_t1_5s.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4631, 0.8563, 0.8438}},
    {"jcamp-1h-t1-series/1H_t1_10s.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 1, 0, {3.4624, 0.8563, 0.8438}},
    {"jcamp-1h-t2-series/1H_t2_40ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.1755, 2.1715}},
    {"jcamp-1h-t2-series/1H_t2_80ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.1821, 2.1642}},
    {"jcamp-1h-t2-series/1H_t2_160ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.1755, 2.1715}},
    {"jcamp-1h-t2-series/1H_t2_320ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.1755, 2.1715}},
    {"jcamp-1h-t2-series/1H_t2_640ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.1755, 2.1715}},
    {"jcamp-1h-t2-series/1H_t2_1281ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.1755, 2.1715}},
    {"jcamp-1h-t2-series/1H_t2_2561ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.1755, 2.1715}},
    {"jcamp-1h-t2-series/1H_t2_5122ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.3919, 2.6205}},
    {"jcamp-1h-t2-series/1H_t2_10244ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.3919, 2.6205}},
    {"jcamp-1h-t2-series/1H_t2_20489ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.4684, 2.5490}},
    {"jcamp-1h-t2-series/1H_t2_40978ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5083, 2.4888, 2.4912}},
    {"jcamp-1h-t2-series/1H_t2_81956ms.dx", 13, kSpectrum, "1H", 600.201505, 0, 1024, 1, 0, {2.5042, 2.4188, 2.8988}},
    {"jcamp-1h-t1-pseudo2d/1H_T1_2D.dx", 13, kSpectrum, "1H", 600.201520, 0, 8192, 10, 0, {3.4624, 0.8563, 0.8438}},
    {"jcamp-13c-1h-rutin-spectra/13c.jdx", 13, kSpectrum, "13C", 100.525303, 0, 52430, 1, 0, {40.0387, 39.6218, 40.4555}},
    {"jcamp-13c-1h-rutin-spectra/qH.jdx", 13, kSpectrum, "1H", 399.782198, 0, 52430, 1, 0, {2.4615, 3.2980, 7.4902}},
    {"jcamp-1h-fid-benchtop-80/nmr_fid.dx", 13, kFid, "1H", 80.487579, 2500.000, 16384, 1, 0, {6.7749}},
    {"jcamp-odd-files/mestrec-jcamp-256.jdx", 13, kSpectrum, "1H", 399.952881, 0, 256, 1, 0, {2.1184, 0.9155, 1.5439}},
    {"jcamp-odd-empty-headers/1H_empty_headers.dx", 13, kFid, "1H", 400.132401, 8012.821, 32768, 1, 1, {3.3657}},
    {"jcamp-odd-empty-headers/1H_empty_headers.dx", 13, kSpectrum, "1H", 400.132401, 0, 65536, 1, 2, {3.3657, 2.5095, 4.1461}},
    {"jcamp-odd-delta-export/PCRF.jdx", 13, kSpectrum, "1H", 399.782198, 0, 7014, 1, 0, {1.2860, 1.2390, 0.8729}},
    {"bruker-flat-23na/001001.FID", 8, kFid, "23NA", 79.3892260292969, 100000, 512, 1, 0, {}},
    {"bruker-flat-23na/001001.1R", 8, kSpectrum, "23NA", 79.3892260292969, 100000, 4096, 1, 0, {-23.6337, -47.3130, -37.7798}},
    {"bruker-flat-23na/001002.1R", 8, kSpectrum, "23NA", 79.3892260292969, 100000, 4096, 1, 0, {-23.9412, -47.6205}},
    {"cmx-1d-fid/data", 9, kFid, "??", 143.865544, 4000, 256, 1, 0, {}},
    {"jcamp-1h-spectrum-triangle-ppm/low-res.jdx", 13, kSpectrum, "1H", 600.202658, 0, 1001, 1, 0, {}},
    {"derived-jeol-big-endian/chloroform-big-endian.jdf", 3, kFid, "1H", 600.172305, 62500, 16384, 1, 0, {7.6781}},
    {"ascii-fid-3column/1D_COMMA_XRI.txt", 14, kFid, "", 0, 50000, 2048, 1, 0, {}},
    {"ascii-fid-3column/1D_COMMA_RI.txt", 14, kFid, "", 0, 0, 2048, 1, 0, {}},
    {"ascii-spectrum-columns/1D_TAB_XRI.txt", 14, kSpectrum, "", 0, 50000, 2048, 1, 0, {}},
    {"ascii-spectrum-columns/1D_COMMA_XR.txt", 14, kSpectrum, "", 0, 50000, 2048, 1, 0, {}},
    {"csv-fid-rows-benchtop/data.csv", 14, kFid, "", 0, 0, 1024, 4, 0, {}},
    {"csv-fid-semicolon-decimal-comma/csv_example.csv", 14, kFid, "", 0, 50000, 1024, 1, 0, {}},
};

struct RefusedSet {
    const char* path;
    std::int32_t code; ///< of the detection
    ErrorCode error;
    const char* words;
};
constexpr const char* kNoNmr = "Non NMR Data !";
constexpr const char* kPlane = "2D Data !\nRetry";
const RefusedSet kRefused[] = {
    {"bruker-odd-parameters-only", -1, ErrorCode::not_nmr, kNoNmr},
    {"bruker-2d-hsqc/ser", 0x2004, ErrorCode::two_dimensional, kPlane},
    {"bruker-1h-t1-inversion-recovery/pdata/1/2rr", 0x2104, ErrorCode::two_dimensional, kPlane},
    {"bruker-1h-t1-inversion-recovery/pdata/1/t1t2.dx", -1, ErrorCode::not_nmr, kNoNmr},
    {"varian-2d-hsqc/fid", 0x2006, ErrorCode::two_dimensional, kPlane},
    {"varian-odd-procpar-only", -1, ErrorCode::not_nmr, kNoNmr},
    {"jeol-2d-hsqc/indanone_hsqc_std-1.jdf", 0x2003, ErrorCode::two_dimensional, kPlane},
    {"jcamp-2d-cosy-ppm/cosyPPM.jdx", 0x210D, ErrorCode::two_dimensional, kPlane},
    {"jcamp-not-nmr-infrared/ethylbenzene.jdx", -1, ErrorCode::not_nmr, kNoNmr},
    {"jcamp-odd-files/structure-*", -1, ErrorCode::not_nmr, kNoNmr},
    {"jcamp-odd-files/compression-*", -1, ErrorCode::not_nmr, kNoNmr},
    {"jcamp-odd-files/misc-*", -1, ErrorCode::not_nmr, kNoNmr},
    {"derived-truncated/jeol-head-only.jdf", -1, ErrorCode::not_nmr, kNoNmr},
    {"derived-truncated/empty.jdf", -1, ErrorCode::not_nmr, kNoNmr},
    {"derived-truncated/empty.dx", -1, ErrorCode::not_nmr, kNoNmr},
};

/// Read with a warning that holds these words.
const std::pair<const char*, const char*> kCut[] = {
    {"derived-truncated/bruker/fid", "10000 of 16384 values"},
    {"derived-truncated/varian/fid", "1117 of 2048 points of row 1"},
    {"derived-truncated/jeol.jdf", "10452 of 32768 values"},
    {"derived-truncated/jcamp-table-cut.jdx", "of 8192 points, the rest is zero"},
    {"derived-truncated/jcamp-ntuples-cut.jdx", "imaginary page holds"},
};
// clang-format on

/// One read by the whole flow.
struct FlowRead {
    Rig rig;
    ObligingAsker asker;
    FileType type;
    Status status;

    explicit FlowRead(const std::string& path, int block = 0) : asker(block)
    {
        rig.Boot();
        rig.g.settings.vendor_start = 0;
        Session s{rig.g, asker, {}, {}, {}, {}};
        s.run_fft_form = [&](FftForm& form) { return PlainTransform(form); };
        status = Read_Path(s, (RealData("README.md").parent_path() / path).string(), type);
    }
    /// Without a window and zero filled once, as the figures were measured.
    std::string PlainTransform(FftForm& form)
    {
        ParamBlock& par = rig.g.Slots[0].par;
        form.SetShift(0);
        EXPECT_TRUE(form.SetZeroFill(par.FIDPointsRaw < kMaxPoints ? 2 : 1));
        SetWindowField(par, WindowField::bf1, 0);
        par.WinFlags[0] = 1; // no trapezoid
        EXPECT_TRUE(form.SetWindowKind(WindowKind::exponential));
        EXPECT_TRUE(form.Command3());
        return rig.g.DialogResult;
    }
    const DataSet& set() const { return rig.g.Slots[0]; }
    std::size_t points() const { return static_cast<std::size_t>(set().par.POINT); }
};

const char* TagOf(const RealSet& c)
{
    const std::map<int, const char*> tags{
        {3, "ECP1"}, {4, "BRU1"},    {6, "VAR1"}, {8, c.kind == kFid ? "BRUX1F" : "BRUX1D"},
        {9, "CMX1"}, {13, "JCAMP1"}, {14, "CSV1"}};
    return tags.at(c.family);
}

double Place(const DataSet& set, std::size_t i)
{
    return set.spec.XAxis[i];
}

/// ppm of the largest magnitude of row 0.
double LargestMagnitude(const FlowRead& read)
{
    const auto re = read.set().spec.DataRe[0], im = read.set().spec.DataIm[0];
    std::size_t best = 0;
    for (std::size_t i = 1; i < read.points(); ++i)
        if (std::hypot(re[i], im[i]) > std::hypot(re[best], im[best])) best = i;
    return Place(read.set(), best);
}

/// The highest maxima, at least 0.15 % of the points apart, as the description has them.
std::vector<double> HighestMaxima(const FlowRead& read, std::size_t count)
{
    const auto re = read.set().spec.DataRe[0];
    const std::size_t n = read.points(), apart = std::max<std::size_t>(1, n * 15 / 10000);
    std::vector<std::size_t> found;
    while (found.size() < count) {
        std::size_t best = n;
        for (std::size_t i = 1; i + 1 < n; ++i) {
            if (re[i] < re[i - 1] || re[i] < re[i + 1] || (best != n && re[i] <= re[best])) continue;
            if (std::ranges::none_of(found, [&](std::size_t k) { return (i > k ? i - k : k - i) <= apart; })) best = i;
        }
        if (best == n) break;
        found.push_back(best);
    }
    std::vector<double> ppm;
    for (const std::size_t i : found) ppm.push_back(Place(read.set(), i));
    return ppm;
}

void ExpectLines(const RealSet& c, const FlowRead& read)
{
    if (c.lines.empty()) return;
    const ParamBlock& par = read.set().par;
    const double grid = std::fabs(Place(read.set(), 1) - Place(read.set(), 0));
    const double tolerance = std::max(std::string_view(c.nucleus) == "1H" ? 0.005 : 0.05, 1.01 * grid);
    if (c.kind == kSpectrum) {
        // Lines of the same height may change places.
        const std::vector<double> found = HighestMaxima(read, c.lines.size());
        for (const double line : c.lines)
            EXPECT_TRUE(
                std::ranges::any_of(found, [&](double ppm) { return std::fabs(ppm - line) < 6e-5 + 1.01 * grid; }))
                << line << " ppm";
    } else if (c.hz_from_carrier) {
        const double centre = (par.ObsCenter / par.OBFRQ0PPM - 1) * 1e6;
        EXPECT_NEAR((LargestMagnitude(read) - centre) * par.OBFRQ0PPM, c.lines[0], 2 * c.width_hz / c.points);
    } else {
        EXPECT_NEAR(LargestMagnitude(read), c.lines[0], tolerance);
    }
}

class RealSets : public testing::Test {
protected:
    void SetUp() override { NMR1D_REAL_DATA(ignored, "README.md"); }
};

TEST_F(RealSets, AreReadWithTheirLinesAtTheirPlaces)
{
    for (const RealSet& c : kSets) {
        SCOPED_TRACE(std::string(c.path) + (c.block > 0 ? " block " + std::to_string(c.block) : ""));
        const FlowRead read(c.path, c.block);
        ASSERT_TRUE(read.status) << read.status.error().text;
        const DataSet& set = read.set();
        if (c.block < 2 && c.family != 14) { // text does not tell which it is before it is read
            EXPECT_EQ(read.rig.g.DataKind, (c.kind == kFid ? 0x1000 : 0x1100) + c.family);
        }
        // What the reader was told; JEOL and Varian readers put the name of their instruments' data in its place.
        if (c.family != 3 && c.family != 6 && c.family != 13 && c.family != 14 && c.family != 9) {
            EXPECT_EQ(set.par.DTYPE, TagOf(c));
        }
        if (*c.nucleus != 0) {
            EXPECT_EQ(set.par.OBNUC, c.nucleus);
        }
        if (c.mhz > 0) {
            EXPECT_NEAR(set.par.ObsCenter, c.mhz, 1e-6 * c.mhz);
        }
        if (c.width_hz > 0) {
            EXPECT_NEAR(static_cast<double>(set.par.FREQU), c.width_hz, 1e-6 * c.width_hz + 5e-4);
        }
        EXPECT_EQ(set.RowCount, c.rows);
        EXPECT_EQ(c.kind == kFid ? set.par.FIDPoints : std::min(set.par.POINT, c.points), c.points);
        ExpectLines(c, read);
    }
}

/// "folder/name*" stands for every file that begins so.
std::vector<std::string> Expand(std::string_view path)
{
    if (!path.ends_with('*')) return {std::string(path)};
    const std::string stem(path.substr(0, path.size() - 1)), folder = stem.substr(0, stem.find('/'));
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(RealData(folder)))
        if (const std::string file = folder + "/" + entry.path().filename().string(); file.starts_with(stem))
            found.push_back(file);
    return found;
}

TEST_F(RealSets, WhatCannotBeReadIsRefusedInTheRightWords)
{
    for (const RefusedSet& c : kRefused)
        for (const std::string& path : Expand(c.path)) {
            SCOPED_TRACE(path);
            const FlowRead read(path);
            ASSERT_FALSE(read.status);
            EXPECT_EQ(read.status.error().code, c.error) << read.status.error().text;
            EXPECT_EQ(read.type.code, c.code);
            ASSERT_FALSE(read.asker.texts.empty());
            EXPECT_EQ(read.asker.texts.back(), c.words);
        }
}

TEST_F(RealSets, WhatIsCutSaysSo)
{
    for (const auto& [path, words] : kCut) {
        SCOPED_TRACE(path);
        const FlowRead read(path);
        ASSERT_TRUE(read.status) << read.status.error().text;
        EXPECT_TRUE(std::ranges::any_of(read.set().Warnings, [&](const auto& w) { return w.find(words) != w.npos; }));
    }
}

bool IsEntry(const std::filesystem::path& path)
{
    const std::string name = ToLower(path.filename().string()), extension = ToLower(path.extension().string());
    const std::set<std::string> names{"fid", "ser", "1r", "2rr", "data"};
    const std::set<std::string> extensions{".dx", ".jdx", ".jdf", ".csv", ".1r", ".fid"};
    const bool text = path.parent_path().filename().string().starts_with("ascii");
    return names.contains(name) || extensions.contains(extension) || text;
}

TEST_F(RealSets, NoneIsLeftOut)
{
    std::set<std::string> known;
    for (const RealSet& c : kSets) known.insert(c.path);
    for (const auto& [path, words] : kCut) known.insert(path);
    for (const RefusedSet& c : kRefused)
        for (std::string& path : Expand(c.path)) known.insert(std::move(path));
    const std::filesystem::path root = RealData("README.md").parent_path();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        const std::string path = std::filesystem::relative(entry.path(), root).string();
        if (entry.is_regular_file() && IsEntry(entry.path())) {
            EXPECT_TRUE(known.contains(path)) << path;
        }
    }
    for (const auto& entry : std::filesystem::directory_iterator(root)) {
        const std::string folder = entry.path().filename().string();
        const auto names_it = [&](const std::string& path) { return path.starts_with(folder); };
        EXPECT_TRUE(!entry.is_directory() || std::ranges::any_of(known, names_it)) << folder;
    }
}

} // namespace
} // namespace nmr::test
