// No cut of a sample is taken for the whole of it: a message, a warning, or the very same data.

#include "core/quiet_answers.h"
#include "formats/detect.h"
#include "formats/registry.h"
#include "samples/samples.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace nmr::test {
namespace {

using namespace samples;

/// Files above this size are cut at every seventh byte only, so that the test stays short.
constexpr std::size_t kEveryByte = 4200, kStride = 7;

/// Reads again and again into one block, which is large.
class Reader {
public:
    Reader() { g_->nuclides = NuclearTable::BuiltIn(); }

    /// Whether it read; the data are in set().
    bool Read(const std::filesystem::path& path)
    {
        ClearDataSet(*g_, 0);
        FileType type = ReadFileType(path.string(), asker_, g_->nuclides);
        if (IsRowArray(type)) type = AsRowArray(type);
        const FormatRow* row = FindFormat(FamilyOf(type.code));
        if (!IsOneDimensional(type.code) || row == nullptr || row->read == nullptr) return false;
        return static_cast<bool>(row->read({*g_, asker_, type, 0})) && set().par.POINT > 0;
    }
    const DataSet& set() const { return g_->Slots[0]; }

private:
    std::unique_ptr<GlobalBlock> g_ = std::make_unique<GlobalBlock>();
    QuietAnswers asker_{Button::no};
};

bool IsSame(const DataSet& a, const DataSet& b)
{
    const auto head = [](const ParamBlock& p) {
        return std::tuple(p.POINT, p.FIDPoints, p.FREQU, p.ObsCenter, p.FileRefMHz, p.OBFRQ0PPM, p.GroupDelay, p.OBNUC);
    };
    return head(a.par) == head(b.par) && a.RowCount == b.RowCount && a.RowValueA == b.RowValueA &&
           std::ranges::equal(a.spec.DataRe.all(), b.spec.DataRe.all()) &&
           std::ranges::equal(a.spec.DataIm.all(), b.spec.DataIm.all()) &&
           std::ranges::equal(a.spec.XAxis, b.spec.XAxis);
}

TEST(SampleCuts, EachShows)
{
    Reader reader;
    for (const Sample& sample : AllSamples()) {
        const TempFolder folder;
        const std::filesystem::path root = folder.path();
        for (const SampleFile& file : sample.files) WriteText(root / file.path, file.bytes);
        if (sample.files.front().cut == Cut::may_be_silent) continue; // a table that does not tell its length
        ASSERT_TRUE(reader.Read(root / sample.entry)) << sample.name;
        const DataSet whole = reader.set();
        for (const SampleFile& file : sample.files) {
            if (file.cut == Cut::may_be_silent) continue;
            SCOPED_TRACE(sample.name + "/" + file.path);
            const std::size_t stride = file.bytes.size() > kEveryByte ? kStride : 1;
            for (std::size_t gone = 1; gone <= file.bytes.size(); gone += stride) {
                std::filesystem::resize_file(root / file.path, file.bytes.size() - gone);
                if (!reader.Read(root / sample.entry)) continue;
                const bool warned = reader.set().Warnings.size() > whole.Warnings.size();
                ASSERT_TRUE(warned || IsSame(reader.set(), whole)) << gone << " bytes gone";
            }
            WriteText(root / file.path, file.bytes);
        }
    }
}

} // namespace
} // namespace nmr::test
