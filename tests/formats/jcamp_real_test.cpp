// Published JCAMP-DX files, against figures that were measured outside this program.

#include "formats/bruker_fixture.h"
#include "formats/detect.h"
#include "formats/jcamp_fixture.h"

#include <cmath>

namespace nmr {
namespace {

using namespace test;

constexpr double kMaxFloatError = 1e-7;

struct SpectrumCase {
    const char* file;
    int block; ///< of several: the button to press; 0 where nothing is asked
    const char* nucleus;
    double mhz;
    std::int32_t points;
    double first_ppm, last_ppm;
    double re_factor, im_factor;
    int nc_proc;
    double first[8];     ///< four complex points as stored
    double strongest[6]; ///< ppm and height without NC_proc of the highest lines
};
// clang-format off
const SpectrumCase kSpectra[] = {
    {"jcamp-iupac-asdf-set/BRUKAFFN.DX", 0, "13C", 100.400000, 16384, 239.42730, 0.01462, 1, 0, 0, {2259260, 0, -5242968, 0, -7176216, 0, -1616072, 0}, {137.6298, 9.722e+08, 137.1768, 9.4006e+08, 134.8971, 5.4235e+08}},
    {"jcamp-iupac-asdf-set/BRUKPAC.DX", 0, "13C", 100.400000, 16384, 239.42730, 0.01462, 1, 0, 0, {2259260, 0, -5242968, 0, -7176216, 0, -1616072, 0}, {137.6298, 9.722e+08, 137.1768, 9.4006e+08, 134.8971, 5.4235e+08}},
    {"jcamp-iupac-asdf-set/BRUKSQZ.DX", 0, "13C", 100.400000, 16384, 239.42730, 0.01462, 1, 0, 0, {2259260, 0, -5242968, 0, -7176216, 0, -1616072, 0}, {137.6298, 9.722e+08, 137.1768, 9.4006e+08, 134.8971, 5.4235e+08}},
    {"jcamp-iupac-asdf-set/BRUKDIF.DX", 0, "13C", 100.400000, 16384, 239.42730, 0.01462, 1, 0, 0, {2254931, 0, -5251616, 0, -7180176, 0, -1602188, 0}, {137.6298, 9.722e+08, 137.1768, 9.4007e+08, 134.8971, 5.4234e+08}},
    {"jcamp-iupac-asdf-set/BRUKNTUP.DX", 0, "13C", 100.400000, 16384, 239.42730, 0.01462, 1, 1, 0, {2254931, -6966283, -5251616, -7618714, -7180176, 2230894, -1602188, 10670409}, {137.6298, 9.722e+08, 137.1768, 9.4007e+08, 134.8971, 5.4234e+08}},
    {"jcamp-iupac-asdf-set/TESTNTUP.DX", 0, "13C", 100.400000, 16384, 239.42729, 0.00000, 29670.15, 21046.1733, 0, {76, -331, -177, -362, -242, 106, -54, 507}, {137.6236, 9.722e+08, 137.1705, 9.4007e+08, 134.8907, 5.4234e+08}},
    {"jcamp-iupac-asdf-set/TESTSPEC.DX", 0, "13C", 100.400000, 16384, 239.42729, 0.00000, 29670.15, 0, 0, {76, 0, -177, 0, -242, 0, -54, 0}, {137.6236, 9.722e+08, 137.1705, 9.4007e+08, 134.8907, 5.4234e+08}},
    {"jcamp-iupac-asdf-set/TEST32.DX", 0, "13C", 100.400000, 16384, 239.42729, 0.00000, 1, 0, 0, {2259260, 0, -5242968, 0, -7176216, 0, -1616072, 0}, {137.6236, 9.722e+08, 137.1705, 9.4006e+08, 134.8907, 5.4235e+08}},
    {"jcamp-1h-forms-200/o01.jdx", 0, "1H", 200.136000, 8192, 11.94836, -2.00965, 1.267406, 0, 0, {37, 0, -2, 0, -2, 0, 2, 0}, {-0.0040, 40557, 7.3269, 15329, 7.2980, 13045}},
    {"jcamp-1h-forms-200/o02.jdx", 0, "1H", 200.136000, 8192, 11.94836, -2.00965, 1.267406, 0, 0, {37, 0, -2, 0, -2, 0, 2, 0}, {-0.0040, 40557, 7.3269, 15329, 7.2980, 13045}},
    {"jcamp-1h-forms-200/o03.jdx", 0, "1H", 200.136000, 8192, 11.94836, -2.00965, 1.267406, 0, 0, {37, 0, -2, 0, -2, 0, 2, 0}, {-0.0040, 40557, 7.3269, 15329, 7.2980, 13045}},
    {"jcamp-1h-forms-200/o04.jdx", 0, "1H", 200.136000, 8192, 11.94836, -2.00965, 1.267406, 0, 0, {37, 0, -2, 0, -2, 0, 2, 0}, {-0.0040, 40557, 7.3269, 15329, 7.2980, 13045}},
    {"jcamp-1h-forms-200/o05.jdx", 0, "1H", 200.136000, 8192, 11.94836, -2.00965, 1.267406, 0, 0, {37, 0, -2, 0, -2, 0, 2, 0}, {-0.0040, 40557, 7.3269, 15329, 7.2980, 13045}},
    {"jcamp-1h-forms-200/o07.jdx", 0, "1H", 200.136000, 8192, 11.94836, -2.00965, 1.267406, 2.492281, 0, {37, 27, -2, 24, -2, 21, 2, 24}, {-0.0040, 40557, 7.3269, 15329, 7.2980, 13045}},
    {"jcamp-1h-compression-400/jcamp-fix.dx", 0, "1H", 400.132130, 16384, 12.31284, -1.66387, 1, 0, -3, {-10247, 0, 1201, 0, -5196, 0, 7245, 0}, {2.5446, 4.0869e+08, 3.8678, 2.1065e+08, 3.6690, 2.0346e+08}},
    {"jcamp-1h-compression-400/jcamp-packed.dx", 0, "1H", 400.132130, 16384, 12.31284, -1.66387, 1, 0, -3, {-10247, 0, 1201, 0, -5196, 0, 7245, 0}, {2.5446, 4.0869e+08, 3.8678, 2.1065e+08, 3.6690, 2.0346e+08}},
    {"jcamp-1h-compression-400/jcamp-squeezed.dx", 0, "1H", 400.132130, 16384, 12.31284, -1.66387, 1, 0, -3, {-10247, 0, 1201, 0, -5196, 0, 7245, 0}, {2.5446, 4.0869e+08, 3.8678, 2.1065e+08, 3.6690, 2.0346e+08}},
    {"jcamp-1h-compression-400/jcamp-difdup.dx", 0, "1H", 400.132130, 16384, 12.31284, -1.66387, 1, 0, -3, {-10247, 0, 1201, 0, -5196, 0, 7245, 0}, {2.5446, 4.0869e+08, 3.8678, 2.1065e+08, 3.6690, 2.0346e+08}},
    {"jcamp-1h-aspirin-bruker/1h.dx", 0, "1H", 300.132251, 32768, 15.47866, -0.47818, 1, 1, -2, {-118793, -119285, -117314, -117425, -116208, -117256, -116677, -116938}, {2.2942, 4.4052e+08, 7.2804, 5.5932e+07, 7.0817, 4.9142e+07}},
    {"jcamp-1h-spectrum-jeol-block/1h.dx", 0, "1H", 399.784494, 16384, 15.10291, -4.88666, 1.32088e-05, 0, 0, {0, 0, -99, 0, -312, 0, -264, 0}, {2.6123, 55.402, 2.2072, 47.992, 3.4567, 40.665}},
    {"jcamp-1h-spectrum-varian-ppm/1h.jdx", 0, "1H", 299.932856, 16384, 16.089531599, -0.746542441, 160.199999, 0, 0, {-0.000111519, 0, 0.00030713, 0, 8.78e-07, 0, 0.000275188, 0}, {8.9278, 127.42, 7.2640, 31.477, -0.0015, 27.876}},
    {"jcamp-1h-spectrum-assignments-ethanol/ethanol_nmr.jdx", 0, "1H", 300.031800, 16384, 13.99949, -1.96111, 0.1, 0, 0, {11361, 0, 8903, 0, 8478, 0, 7154, 0}, {1.2480, 3.5175e+07, 1.8091, 2.5382e+07, 3.7098, 1.894e+07}},
    {"jcamp-1h-link-fid-and-spectrum/1h.dx", 2, "1H", 300.132251, 32768, 15.47866, -0.47818, 1, 1, -2, {-118793, -119285, -117314, -117425, -116208, -117256, -116677, -116938}, {2.2942, 4.4052e+08, 7.2804, 5.5932e+07, 7.0817, 4.9142e+07}},
    {"jcamp-19f-fluoromethylbenzylamine/19f1h-dec.dx", 0, "19F", 376.454530, 65536, -86.48948, -146.30961, 1, 1, -2, {12395, -60513, 12834, -60687, 12968, -60930, 12888, -61120}, {-116.4420, 2.7056e+08, -116.8518, 1.8913e+06, -116.2037, 1.8018e+06}},
    {"jcamp-31p-phosphineoxide/31p.dx", 0, "31P", 202.456085, 32768, 74.83852, -74.83397, 1, 1, -1, {-84283, 123574, -110089, 142358, -97023, 176723, -55850, 170295}, {44.7186, 2.7272e+08, 44.3577, 5.1496e+06, 45.0840, 1.1876e+06}},
    {"jcamp-1h-t1-series/1H_t1_100ms.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -4, {-155, 0, 19, 0, -245, 0, 67, 0}, {3.5196, 42575, 3.5710, 36813, 3.5849, 33908}},
    {"jcamp-1h-t1-series/1H_t1_250ms.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -5, {12035, 0, 11316, 0, 10644, 0, 10444, 0}, {3.4389, 2.0791e+05, 3.5365, 1.385e+05, 3.5145, 1.2745e+05}},
    {"jcamp-1h-t1-series/1H_t1_500ms.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -6, {11681, 0, 12752, 0, 13097, 0, 12661, 0}, {3.4470, 3.494e+06, 0.8364, 1.7489e+06, 0.8262, 1.2253e+06}},
    {"jcamp-1h-t1-series/1H_t1_1s.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -6, {-26719, 0, -26431, 0, -24987, 0, -25582, 0}, {3.4631, 4.4724e+08, 0.8563, 1.0248e+08, 0.8438, 8.4938e+07}},
    {"jcamp-1h-t1-series/1H_t1_2s.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -5, {-27111, 0, -27617, 0, -27119, 0, -27587, 0}, {3.4631, 4.2693e+08, 0.8563, 1.1105e+08, 0.8438, 9.1538e+07}},
    {"jcamp-1h-t1-series/1H_t1_3s.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -5, {-40338, 0, -41796, 0, -40728, 0, -40980, 0}, {3.4631, 4.7659e+08, 0.8563, 1.2933e+08, 0.8438, 1.0739e+08}},
    {"jcamp-1h-t1-series/1H_t1_4s.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -5, {-48104, 0, -48415, 0, -47434, 0, -48202, 0}, {3.4631, 4.9656e+08, 0.8563, 1.3532e+08, 0.8438, 1.1261e+08}},
    {"jcamp-1h-t1-series/1H_t1_5s.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -5, {-39896, 0, -40529, 0, -40527, 0, -40917, 0}, {3.4631, 5.0265e+08, 0.8563, 1.374e+08, 0.8438, 1.1354e+08}},
    {"jcamp-1h-t1-series/1H_t1_10s.dx", 0, "1H", 600.201520, 8192, 5.53802, -0.47175, 1, 0, -5, {-16204, 0, -16288, 0, -16241, 0, -16403, 0}, {3.4624, 5.0269e+08, 0.8563, 1.3753e+08, 0.8438, 1.1229e+08}},
    {"jcamp-1h-t2-series/1H_t2_40ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -15, {-462620, 0, -500893, 0, -504933, 0, -483522, 0}, {2.5083, 5.1056e+08, 2.1755, 1.2998e+08, 2.1715, 1.2767e+08}},
    {"jcamp-1h-t2-series/1H_t2_80ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -14, {421535, 0, 431508, 0, 425725, 0, 414626, 0}, {2.5083, 2.8271e+08, 2.1821, 6.4366e+07, 2.1642, 6.1768e+07}},
    {"jcamp-1h-t2-series/1H_t2_160ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -14, {-512973, 0, -489565, 0, -476546, 0, -467741, 0}, {2.5083, 2.7398e+08, 2.1755, 7.3778e+07, 2.1715, 7.0013e+07}},
    {"jcamp-1h-t2-series/1H_t2_320ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -15, {252608, 0, 243510, 0, 228980, 0, 229537, 0}, {2.5083, 5.2943e+08, 2.1755, 1.4213e+08, 2.1715, 1.3254e+08}},
    {"jcamp-1h-t2-series/1H_t2_640ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -14, {-352631, 0, -363409, 0, -364392, 0, -356034, 0}, {2.5083, 2.8775e+08, 2.1755, 4.0916e+07, 2.1715, 3.8865e+07}},
    {"jcamp-1h-t2-series/1H_t2_1281ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -15, {-265602, 0, -254121, 0, -249702, 0, -247188, 0}, {2.5083, 5.092e+08, 2.1755, 4.0833e+07, 2.1715, 3.8656e+07}},
    {"jcamp-1h-t2-series/1H_t2_2561ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -15, {149107, 0, 149811, 0, 147490, 0, 147218, 0}, {2.5083, 4.3024e+08, 2.1755, 1.0395e+07, 2.1715, 9.6724e+06}},
    {"jcamp-1h-t2-series/1H_t2_5122ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -15, {-273843, 0, -279795, 0, -273461, 0, -268383, 0}, {2.5083, 3.1566e+08, 2.3919, 1.4624e+06, 2.6205, 1.4154e+06}},
    {"jcamp-1h-t2-series/1H_t2_10244ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -16, {-40170, 0, -58469, 0, -54650, 0, -42915, 0}, {2.5083, 3.4014e+08, 2.3919, 1.165e+06, 2.6205, 9.7003e+05}},
    {"jcamp-1h-t2-series/1H_t2_20489ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -18, {-913755, 0, -886779, 0, -909456, 0, -952552, 0}, {2.5083, 4.0312e+08, 2.4684, 1.6223e+06, 2.5490, 1.172e+06}},
    {"jcamp-1h-t2-series/1H_t2_40978ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -21, {-1568535, 0, -958292, 0, -755233, 0, -744450, 0}, {2.5083, 2.9342e+08, 2.4888, 1.0075e+07, 2.4912, 9.9758e+06}},
    {"jcamp-1h-t2-series/1H_t2_81956ms.dx", 0, "1H", 600.201505, 1024, 2.92399, 2.09175, 1, 0, -26, {88275962, 0, 95071358, 0, 95937941, 0, 90234144, 0}, {2.5042, 3.7372e+08, 2.4188, 1.936e+08, 2.8988, 1.8673e+08}},
    {"jcamp-13c-1h-rutin-spectra/13c.jdx", 0, "13C", 100.525303, 52430, 225.60283, -25.60283, 6.84053275e-08, 0, 0, {138, 0, 145, 0, 153, 0, 160, 0}, {40.0387, 0.0037351, 39.6218, 0.0016067, 40.4555, 0.0015848}},
    {"jcamp-13c-1h-rutin-spectra/qH.jdx", 0, "1H", 399.782198, 52430, 19.02148, -1.02148, 4.97762925e-08, 0, 0, {-7349, 0, -7353, 0, -7357, 0, -7361, 0}, {2.4615, 0.1209, 3.2980, 0.10875, 7.4902, 0.056542}},
    {"jcamp-odd-files/mestrec-jcamp-256.jdx", 0, "1H", 399.952881, 256, 4.48832, -0.08986, 5421.7096, 3476.8316, 0, {-1239, 3053, -439, 3841, -587, 4078, -332, 3392}, {2.1184, 4.3374e+08, 0.9155, 3.3518e+08, 1.5439, 3.2574e+08}},
    {"jcamp-odd-empty-headers/1H_empty_headers.dx", 2, "1H", 400.132401, 65536, 16.01277, -4.01247, 1, 1, -3, {7589, 7284, 10317, 3661, 8969, -586, 5283, -2271}, {3.3657, 3.7032e+08, 2.5095, 6.1277e+07, 4.1461, 4.386e+07}},
    {"jcamp-odd-delta-export/PCRF.jdx", 0, "1H", 399.782198, 7014, 6.18933, -0.82562, 2.01880561e-10, 2.01880561e-10, 0, {-5074642, 28569734, -5070451, 28595401, -5070886, 28630874, -5072018, 28642132}, {1.2860, 0.43354, 1.2390, 0.41674, 0.8729, 0.17145}},
};

enum class LineUnit { ppm, hz }; ///< shift, or distance from the carrier
constexpr LineUnit kPpm1 = LineUnit::ppm, kHz = LineUnit::hz;
struct FidCase {
    const char* file;
    int block;
    const char* nucleus;
    double mhz;
    std::int32_t points;
    double sweep_hz;
    double re_factor, im_factor; ///< a negative one: handed over in the sense of Bruker data
    LineUnit unit;
    double line; ///< the tallest line of the spectrum
    double first[8];
};
const FidCase kFids[] = {
    {"jcamp-iupac-asdf-set/TESTFID.DX", 0, "13C", 100.400000, 16384, 24038.500, 5.20041505, -5.04428236, kHz, 1752.563, {573, 1232, 11374, 20776, 14117, -9414, 8126, -13408}},
    {"jcamp-1h-forms-200/ofid1.jdx", 0, "1H", 200.133000, 8192, 2792.989, 0.841812, 0.801094, kHz, -995.037, {-501, 14998, -9843, -20662, -22791, -19074, 8262, -5160}},
    {"jcamp-1h-forms-200/ofid3.jdx", 0, "1H", 200.133000, 8192, 2792.989, 0.841812, 0.801094, kHz, -995.037, {-501, 14998, -9843, -20662, -22791, -19074, 8262, -5160}},
    {"jcamp-1h-aspirin-bruker/1h.fid.dx", 0, "1H", 300.132251, 8192, 4789.272, 1, 1, kPpm1, 2.2942, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-1h-fid-benchtop/1h.jdx", 0, "1H", 60.123969, 2048, 862.069, 6.25587535e-07, 6.25587535e-07, kPpm1, 0.9522, {2.147483e+09, 1.1413262e+09, 2.0542728e+08, -1.1277349e+09, -1.3167724e+09, 9.0096294e+08, 7.8517697e+08, 1.0834616e+09}},
    {"jcamp-1h-link-fid-and-spectrum/1h.dx", 1, "1H", 300.132251, 8192, 4789.272, 1, 1, kPpm1, 2.2942, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-13c-dept-set-cytisine/13c.fid.dx", 0, "13C", 150.935503, 131072, 36057.692, 1, 1, kPpm1, 53.5090, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-13c-dept-set-cytisine/dept45.fid.dx", 0, "13C", 150.935503, 131072, 36057.692, 1, 1, kPpm1, 49.6520, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-13c-dept-set-cytisine/dept90.fid.dx", 0, "13C", 150.935503, 131072, 36057.692, 1, 1, kPpm1, 104.4737, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-13c-dept-set-cytisine/dept135.fid.dx", 0, "13C", 150.935503, 131072, 36057.692, 1, 1, kPpm1, 49.6547, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-19f-fluoromethylbenzylamine/19f.fid.dx", 0, "19F", 376.455169, 65536, 22522.523, 1, 1, kPpm1, -116.4397, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-19f-fluoromethylbenzylamine/19f1h-dec.fid.dx", 0, "19F", 376.454530, 32768, 22522.523, 1, 1, kPpm1, -116.4420, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-31p-phosphineoxide/31p.fid.dx", 0, "31P", 202.456085, 32768, 30303.030, 1, 1, kPpm1, 44.7209, {0, 0, 0, 0, 0, 0, 0, 0}},
    {"jcamp-1h-fid-benchtop-80/nmr_fid.dx", 0, "1H", 80.487579, 16384, 2500.000, 1, 1, kPpm1, 6.7749, {2034.2012, 0, 3651.1908, 1503.4395, 2689.262, 2710.4263, 1317.8071, 3455.5297}},
    {"jcamp-odd-empty-headers/1H_empty_headers.dx", 1, "1H", 400.132401, 32768, 8012.821, 1, 1, kPpm1, 3.3657, {0, 0, 0, 0, 0, 0, 0, 0}},
};
// clang-format on

class RealJcamp : public testing::Test {
protected:
    void SetUp() override { NMR1D_REAL_DATA(ignored, "jcamp-iupac-asdf-set"); }
};

std::filesystem::path FileOf(const char* name)
{
    const std::string path = name;
    return RealData(path.substr(0, path.find('/'))) / path.substr(path.find('/') + 1);
}

/// The read of a file, with the button of the wanted block where there are several.
std::unique_ptr<JcampRead> ReadFile(const char* file, int block, JcampKind kind)
{
    if (block == 0) return std::make_unique<JcampRead>(FromFile{FileOf(file)});
    const std::string text = ReadText(FileOf(file));
    std::string title = text.substr(text.find("##TITLE=") + 8);
    title = title.substr(0, std::min(title.find_first_of("\r\n"), std::size_t{40}));
    const std::string caption = std::to_string(block) + (kind == JcampKind::fid ? ": FID, " : ": Spectrum, ") + title;
    return std::make_unique<JcampRead>(FromFile{FileOf(file)},
                                       std::initializer_list<ScriptedAsker::Answer>{FormAnswer{caption, {}}});
}

void ExpectHead(const JcampRead& read, const char* nucleus, double mhz, std::int32_t points)
{
    EXPECT_EQ(read.par().OBNUC, nucleus);
    EXPECT_NEAR(read.par().ObsCenter, mhz, 1e-6 * mhz);
    EXPECT_EQ(read.par().FIDPoints, points);
    EXPECT_GE(read.par().POINT, points);
}

/// Figures of eight digits.
void ExpectFirst(const JcampRead& read, const double (&first)[8], double re_factor, double im_factor)
{
    for (std::size_t i = 0; i < 4; ++i) {
        const double re = first[2 * i] * re_factor, im = first[2 * i + 1] * im_factor;
        EXPECT_NEAR(read.set().spec.DataRe[0][i], re, 2 * kMaxFloatError * std::fabs(re)) << i;
        EXPECT_NEAR(read.set().spec.DataIm[0][i], im, 2 * kMaxFloatError * std::fabs(im)) << i;
    }
}

TEST_F(RealJcamp, SpectraStandWhereTheirLinesAre)
{
    for (const SpectrumCase& c : kSpectra) {
        SCOPED_TRACE(c.file);
        const auto read = ReadFile(c.file, c.block, JcampKind::spectrum);
        ASSERT_TRUE(read->status) << read->status.error().text;
        ExpectHead(*read, c.nucleus, c.mhz, c.points);
        const DataSet& set = read->set();
        const auto points = static_cast<std::size_t>(c.points);
        EXPECT_NEAR(set.spec.XAxis[0], c.first_ppm, 2e-5);
        EXPECT_NEAR(set.spec.XAxis[points - 1], c.last_ppm, 2e-5);
        const double scale = std::exp2(c.nc_proc);
        ExpectFirst(*read, c.first, c.re_factor * scale, c.im_factor * scale);
        const auto re = set.spec.DataRe[0].first(points);
        EXPECT_NEAR(*std::ranges::max_element(re), scale * c.strongest[1], 1e-4 * scale * c.strongest[1]);
        for (std::size_t i = 0; i < 6; i += 2) {
            const double place = (c.strongest[i] - set.spec.XAxis[0]) / (set.spec.XAxis[1] - set.spec.XAxis[0]);
            const auto around = static_cast<std::size_t>(std::lround(place));
            const double tallest = *std::ranges::max_element(re.subspan(around - 1, 3));
            EXPECT_NEAR(tallest, scale * c.strongest[i + 1], 1e-4 * scale * c.strongest[i + 1]) << c.strongest[i];
        }
        EXPECT_EQ(read->Warnings().empty(), c.points != 16384 || c.mhz != 299.932856) << read->Warnings();
    }
}

/// Largest amplitude within `reach` Hz of a frequency.
double Tallest(const DataSet& set, double hz, double reach)
{
    const double step = 0.3 * static_cast<double>(set.par.FREQU) / set.par.FIDPoints;
    double tallest = 0;
    for (double off = -reach; off <= reach; off += step)
        tallest = std::max(tallest, std::abs(Amplitude(set, hz + off, 0)));
    return tallest;
}

TEST_F(RealJcamp, FidsTurnTheRightWay)
{
    for (const FidCase& c : kFids) {
        SCOPED_TRACE(c.file);
        const auto read = ReadFile(c.file, c.block, JcampKind::fid);
        ASSERT_TRUE(read->status) << read->status.error().text;
        ExpectHead(*read, c.nucleus, c.mhz, c.points);
        EXPECT_EQ(read->Warnings(), "");
        const ParamBlock& par = read->par();
        EXPECT_EQ(par.SMODE, 0);
        EXPECT_NEAR(par.FREQU, c.sweep_hz, 2e-6 * c.sweep_hz);
        ExpectFirst(*read, c.first, c.re_factor, c.im_factor);
        const double centre_ppm = (par.ObsCenter - par.FileRefMHz) / par.FileRefMHz * 1e6;
        const double hz = c.unit == LineUnit::hz ? c.line : (c.line - centre_ppm) * par.FileRefMHz;
        // Not mirrored, and the tallest of its neighbourhood.
        const double there = Tallest(read->set(), hz, 2 * c.sweep_hz / c.points);
        EXPECT_GT(there, 1.5 * Tallest(read->set(), -hz, 2 * c.sweep_hz / c.points));
        EXPECT_GT(there, 0.9 * Tallest(read->set(), hz, 20 * c.sweep_hz / c.points));
    }
}

TEST_F(RealJcamp, OneMeasurementInTwoFormsIsTheSame)
{
    const char* pairs[][2] = {
        {"jcamp-iupac-asdf-set/BRUKAFFN.DX", "jcamp-iupac-asdf-set/BRUKPAC.DX"},
        {"jcamp-iupac-asdf-set/BRUKAFFN.DX", "jcamp-iupac-asdf-set/BRUKSQZ.DX"},
        {"jcamp-iupac-asdf-set/BRUKDIF.DX", "jcamp-iupac-asdf-set/BRUKNTUP.DX"},
        {"jcamp-iupac-asdf-set/TESTSPEC.DX", "jcamp-iupac-asdf-set/TESTNTUP.DX"},
        {"jcamp-1h-forms-200/o01.jdx", "jcamp-1h-forms-200/o02.jdx"},
        {"jcamp-1h-forms-200/o01.jdx", "jcamp-1h-forms-200/o03.jdx"},
        {"jcamp-1h-forms-200/o01.jdx", "jcamp-1h-forms-200/o04.jdx"},
        {"jcamp-1h-forms-200/o01.jdx", "jcamp-1h-forms-200/o05.jdx"},
        {"jcamp-1h-forms-200/o01.jdx", "jcamp-1h-forms-200/o07.jdx"},
        {"jcamp-1h-forms-200/ofid1.jdx", "jcamp-1h-forms-200/ofid3.jdx"},
        {"jcamp-1h-compression-400/jcamp-fix.dx", "jcamp-1h-compression-400/jcamp-packed.dx"},
        {"jcamp-1h-compression-400/jcamp-fix.dx", "jcamp-1h-compression-400/jcamp-squeezed.dx"},
        {"jcamp-1h-compression-400/jcamp-fix.dx", "jcamp-1h-compression-400/jcamp-difdup.dx"},
    };
    for (const auto& pair : pairs) {
        SCOPED_TRACE(std::string(pair[0]) + " " + pair[1]);
        const JcampRead one(FromFile{FileOf(pair[0])}), other(FromFile{FileOf(pair[1])});
        ASSERT_TRUE(one.status && other.status);
        EXPECT_TRUE(std::ranges::equal(one.set().spec.DataRe.all(), other.set().spec.DataRe.all()));
        EXPECT_NEAR(one.set().spec.XAxis.back(), other.set().spec.XAxis.back(), 1e-5);
    }
}

TEST_F(RealJcamp, ExportAndVendorFilesAgree)
{
    const BrukerRead vendor(RealData("bruker-1h-fid-aspirin-300") / "pdata/1/1r", kFolderSpectrum);
    const JcampRead exported(FromFile{FileOf("jcamp-1h-aspirin-bruker/1h.dx")});
    ASSERT_TRUE(vendor.status && exported.status);
    EXPECT_NEAR(exported.par().OBFRQ0PPM, vendor.par().OBFRQ0PPM, 1e-9);
    const auto a = vendor.set().spec.DataRe[0], b = exported.set().spec.DataRe[0];
    ASSERT_EQ(a.size(), b.size());
    EXPECT_NEAR(vendor.set().spec.XAxis.back(), exported.set().spec.XAxis.back(), 1e-8);
    const float tallest = *std::ranges::max_element(a);
    for (std::size_t i = 0; i < a.size(); ++i) ASSERT_NEAR(a[i], b[i], 0.01F * tallest) << i;

    const BrukerRead fid(RealData("bruker-1h-fid-aspirin-300") / "fid", kFolderFid);
    const JcampRead exported_fid(FromFile{FileOf("jcamp-1h-aspirin-bruker/1h.fid.dx")});
    ASSERT_TRUE(fid.status && exported_fid.status);
    EXPECT_EQ(exported_fid.par().GroupDelay, fid.par().GroupDelay);
    EXPECT_EQ(exported_fid.par().FileRefMHz, fid.par().FileRefMHz);
    EXPECT_NEAR(exported_fid.par().FREQU, fid.par().FREQU, 1e-2);
    // The vendor reader takes the mean off and divides: the steps between points are the same but for a factor.
    const auto im = fid.set().spec.DataIm[0], exported_im = exported_fid.set().spec.DataIm[0];
    const auto step = [](std::span<const float> row, std::size_t i) {
        return static_cast<double>(row[i + 1]) - static_cast<double>(row[i]);
    };
    double product = 0, own = 0;
    for (std::size_t i = 0; i + 1 < 8192; ++i) {
        product += step(im, i) * step(exported_im, i);
        own += step(im, i) * step(im, i);
    }
    for (std::size_t i = 0; i + 1 < 8192; ++i) ASSERT_NEAR(step(exported_im, i), product / own * step(im, i), 1) << i;
}

TEST_F(RealJcamp, RelaxationSeriesShareOneScale)
{
    // Recovery after inversion: heights are comparable only with each file's own power of two.
    double before = -HUGE_VAL;
    for (const char* delay : {"500ms", "1s", "2s", "3s", "4s", "5s"}) {
        const std::string name = std::string("jcamp-1h-t1-series/1H_t1_") + delay + ".dx";
        const JcampRead read(FromFile{FileOf(name.c_str())});
        ASSERT_TRUE(read.status);
        const auto tallest = static_cast<double>(*std::ranges::max_element(read.set().spec.DataRe[0]));
        EXPECT_GT(tallest, 1.0001 * before) << delay;
        before = tallest;
    }
}

TEST_F(RealJcamp, WhatIsNoOneDimensionalNmrIsRefusedOrMarked)
{
    const struct {
        const char* file;
        ErrorCode code;
    } refused[] = {
        {"jcamp-2d-cosy-ppm/cosyPPM.jdx", ErrorCode::two_dimensional},
        {"jcamp-not-nmr-infrared/ethylbenzene.jdx", ErrorCode::not_nmr},
        {"jcamp-odd-files/structure-tree.jdx", ErrorCode::not_nmr},
        {"jcamp-odd-files/structure-noend.jdx", ErrorCode::not_nmr},
        {"jcamp-odd-files/structure-ntuples.jdx", ErrorCode::not_nmr},
        {"jcamp-odd-files/structure-assigned.jdx", ErrorCode::not_nmr},
        {"jcamp-odd-files/misc-sameLabel.jdx", ErrorCode::not_nmr},
        {"jcamp-odd-files/compression-small-jcamp-difdup.dx", ErrorCode::not_nmr},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.file);
        const JcampRead read(FromFile{FileOf(c.file)});
        ASSERT_FALSE(read.status);
        EXPECT_EQ(read.status.error().code, c.code) << read.status.error().text;
    }
    const JcampRead table(FromFile{FileOf("derived-truncated/jcamp-table-cut.jdx")});
    ASSERT_TRUE(table.status);
    EXPECT_NE(table.Warnings().find("of 8192 points, the rest is zero"), std::string::npos) << table.Warnings();
    const JcampRead pages(FromFile{FileOf("derived-truncated/jcamp-ntuples-cut.jdx")});
    ASSERT_TRUE(pages.status);
    EXPECT_NE(pages.Warnings().find("imaginary page holds"), std::string::npos) << pages.Warnings();
    const JcampRead mended(FromFile{FileOf("jcamp-1h-spectrum-varian-ppm/1h.jdx")});
    EXPECT_NE(mended.Warnings().find("16384 points, not 16385"), std::string::npos) << mended.Warnings();
}

TEST_F(RealJcamp, RowsAlongAListOfDelaysAreAnArray)
{
    const JcampRead spectra(FromFile{FileOf("jcamp-1h-t1-pseudo2d/1H_T1_2D.dx")});
    ASSERT_TRUE(spectra.status) << spectra.status.error().text;
    // Ten were measured, the file holds sixteen; their delays stand in a list that it carries along.
    const float delays[] = {10, 5, 4, 3, 2, 1, 0.5F, 0.25F, 0.1F, 0.01F};
    ASSERT_EQ(spectra.set().RowCount, 10);
    EXPECT_TRUE(std::equal(std::begin(delays), std::end(delays), spectra.set().RowValueA.begin()));
    EXPECT_EQ(spectra.set().RowParamName + " " + spectra.set().RowParamUnit, "vd s");
    const auto top = [](const DataSet& set, std::size_t row) {
        return static_cast<double>(*std::ranges::max_element(set.spec.DataRe[row]));
    };
    EXPECT_NEAR(top(spectra.set(), 0), 2.5135e8 / 16, 1e-3 * 2.5135e8 / 16);
    for (std::size_t row = 1; row < 6; ++row) // recovery after inversion
        EXPECT_LT(top(spectra.set(), row), 1.01 * top(spectra.set(), row - 1)) << row;

    const JcampRead fids(FromFile{FileOf("jcamp-1h-pseudo2d-t1-benchtop/pseudoT1.jdx")});
    ASSERT_TRUE(fids.status) << fids.status.error().text;
    ASSERT_EQ(fids.set().RowCount, 8);
    EXPECT_FLOAT_EQ(fids.set().RowValueA[2], 0.12008F);
    EXPECT_EQ(fids.set().RowParamName + " " + fids.set().RowParamUnit, "T1 s");
    EXPECT_EQ(fids.par().FIDPoints, 2048);
    EXPECT_NEAR(fids.set().spec.DataRe[0][0], -1.6242227e9 * 1.19208e-06, 0.01);
    EXPECT_NEAR(fids.set().spec.DataIm[0][3], 1.6928971e9 * 1.19208e-06, 0.01);
}

} // namespace
} // namespace nmr
