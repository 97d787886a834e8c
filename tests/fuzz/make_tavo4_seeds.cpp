// make_tavo4_seeds FOLDER: native files as inputs of fuzz_tavo4.

#include "core/file_layer.h"
#include "formats/tavo4.h"

#include <filesystem>

using namespace nmr;

namespace {

void Fill(GlobalBlock& g, std::int16_t slot, std::int32_t points, std::int32_t rows)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    ClearDataSet(g, slot);
    set.par.POINT = points;
    set.par.SMODE = 1;
    set.RowCount = rows;
    if (!AllocateSpecBuffer(g, points, slot)) return;
    set.par.Resolution2 = 0.25;
    set.par.OBFRQ0PPM = set.par.ObsCenter = 100;
    for (std::size_t i = 0; i < static_cast<std::size_t>(points); ++i)
        set.spec.XAxis[i] = 0.25 * static_cast<double>(i);
    set.Peaks.resize(2);
    set.Integrals.resize(2);
    set.MultiViews.resize(1);
    set.SimPeaks.resize(2);
    set.HistoryA = set.HistoryB = {"one", "two"};
    set.par.COMNT = "comment";
    set.CommentRtf = "{\\rtf1 comment}";
    set.CommentRtfPlain = set.par.COMNT;
    set.par.SampleId = "\\<S\\-1 1\\-0 \\>";
    set.par.DATIM = "01/Feb/2024 03:04:05";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    const std::filesystem::path folder = argv[1];
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    static GlobalBlock g;
    Fill(g, 0, 4, 1);
    bool good = static_cast<bool>(WriteDataTavo4(g, (folder / "one").string(), 0));
    Fill(g, 0, 4, 3);
    Fill(g, 1, 2, 1);
    g.Slots[0].Carried = {{"## TEXT DATA-0", 5000, Bytes(64)}, {"## PICTURE-0", 6000, Bytes(80)}};
    good = WriteDataTavo4(g, (folder / "several").string(), 0) && good;
    return good ? 0 : 1;
}
