// The FID as it was read, kept in a file or in memory, and the zero fill that loads it anew.

#include "core/file_layer.h"
#include "fid/fft_pipeline.h"
#include "fid/transform_set.h"
#include "fid/window.h"

#include <bit>
#include <cstring>

namespace nmr {

namespace {

constexpr std::int32_t kZeroFillLimit = kMaxPoints + 1;

Error Failure(ErrorCode code, const char* text)
{
    return {code, "FIDWorkFile", text};
}

std::size_t RowsOf(const DataSet& set)
{
    return static_cast<std::size_t>(std::max(set.RowCount, 1));
}

/// The kept FID: rows of real parts, then rows of imaginary parts.
struct KeptFid {
    Bytes file;                       ///< owns the bytes when they come from a file
    std::span<const std::byte> bytes; ///< all of them
    std::size_t rows = 0, points = 0;

    std::span<const std::byte> Line(std::size_t line) const
    {
        return bytes.subspan(line * points * sizeof(float), points * sizeof(float));
    }
};

Result<KeptFid> FetchFid(const GlobalBlock& g, const DataSet& set)
{
    KeptFid fid;
    fid.rows = RowsOf(set);
    fid.points = static_cast<std::size_t>(std::max(set.par.FIDPointsRaw > 0 ? set.par.FIDPointsRaw : set.par.POINT, 0));
    if (g.FIDWorkFile.empty()) {
        fid.bytes = std::as_bytes(g.FidMemory.all());
    } else {
        auto file = ReadWholeFile(g.FIDWorkFile.string());
        if (!file) return file.error();
        fid.file = std::move(*file);
        fid.bytes = fid.file;
    }
    if (fid.points == 0 || fid.bytes.size() < 2 * fid.rows * fid.points * sizeof(float))
        return Failure(ErrorCode::truncated, "The kept FID is missing or shorter than its parameters say.");
    return fid;
}

void Size(RowArray<float>& array, std::size_t rows, std::size_t columns)
{
    if (array.rows() != rows || array.columns() != columns) array.Resize(rows, columns);
}

/// The first points of every row from `lines` of the kept FID, zeros behind them.
void Unpack(const KeptFid& fid, std::size_t first_line, std::size_t columns, RowArray<float>& target)
{
    Size(target, fid.rows, columns);
    const std::size_t count = std::min(fid.points, columns);
    for (std::size_t row = 0; row < fid.rows; ++row) {
        const auto line = target[row];
        std::memcpy(line.data(), fid.Line(first_line + row).data(), count * sizeof(float));
        std::fill(line.begin() + static_cast<std::ptrdiff_t>(count), line.end(), 0.0F);
    }
}

void UnpackBoth(GlobalBlock& g, const KeptFid& fid, std::int32_t points)
{
    const auto columns = static_cast<std::size_t>(points) + 1;
    Unpack(fid, 0, columns, g.WorkRe);
    Unpack(fid, fid.rows, columns, g.WorkIm);
}

/// The FID of the set, packed as it is kept.
RowArray<float> Pack(const DataSet& set)
{
    const auto n = static_cast<std::size_t>(set.par.POINT);
    const std::size_t rows = RowsOf(set);
    RowArray<float> packed;
    packed.Resize(2 * rows, n);
    for (std::size_t row = 0; row < rows; ++row) {
        std::ranges::copy(set.spec.DataRe[row].first(n), packed[row].begin());
        std::ranges::copy(set.spec.DataIm[row].first(n), packed[rows + row].begin());
    }
    return packed;
}

bool HoldsFid(const DataSet& set)
{
    const auto n = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    const auto fits = [&](const RowArray<float>& a) { return a.rows() >= RowsOf(set) && a.columns() >= n; };
    return n > 0 && fits(set.spec.DataRe) && fits(set.spec.DataIm);
}

/// Points on the frequency of `point` when a row of `from` points becomes one of `to`: zero frequency
/// stands one point left of the middle in both.
std::int32_t SameFrequency(std::int32_t point, std::int32_t from, std::int32_t to)
{
    const std::int32_t bins = point - (from / 2 - 1);
    const std::int32_t moved = to / 2 - 1 + RoundHalfEven(static_cast<double>(bins) * to / from);
    return std::clamp(moved, 0, std::max(to - 1, 0));
}

/// New length of all rows: arrays anew, FID loaded, window recomputed. Nothing changes on a failure
/// to get the FID back.
Status Refill(GlobalBlock& g, std::int16_t slot, std::int32_t factor)
{
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    const std::int32_t old_points = set.par.POINT;
    const std::int32_t points = set.par.FIDPointsRaw * factor;
    auto fid = FetchFid(g, set);
    if (!fid) return fid.error();
    if (Status made = AllocateSpecBuffer(g, points, slot); !made) return made;
    set.par.POINT = points;
    set.ProcMark1 = factor;
    set.ProcMark2 = 1; // a zero fill ends the fill by linear prediction
    UnpackBoth(g, *fid, points);
    if (old_points > 1) {
        g.PivotPoint = SameFrequency(g.PivotPoint, old_points, points);
        if (g.P2Point >= 0) g.P2Point = SameFrequency(g.P2Point, old_points, points);
    }
    return Make_Window_Function(g, slot);
}

bool MayRefill(const GlobalBlock& g, std::int16_t slot)
{
    return slot >= 0 && slot < kSlotCount && !g.NoFIDFile &&
           g.Slots[static_cast<std::size_t>(slot)].par.FIDPointsRaw > 0;
}

} // namespace

Status Write_FID_Work(GlobalBlock& g)
{
    DataSet& set = TransformSet(g);
    g.NoFIDFile = false;
    if (!HoldsFid(set)) {
        g.NoFIDFile = true;
        return Failure(ErrorCode::bad_value, "There is no FID to keep.");
    }
    set.par.FIDPointsRaw = set.par.POINT;
    g.FidMemory.Release();
    RowArray<float> packed = Pack(set);
    if (g.FIDWorkFile.empty()) {
        g.FidMemory = std::move(packed);
        return {};
    }
    Status written = WriteWholeFile(g.FIDWorkFile, std::as_bytes(packed.all()));
    if (written) return {};
    // One transform is still possible: of the copy in the work rows, which nothing can bring back.
    g.NoFIDFile = true;
    KeptFid fid;
    fid.rows = RowsOf(set);
    fid.points = static_cast<std::size_t>(set.par.POINT);
    fid.bytes = std::as_bytes(packed.all());
    UnpackBoth(g, fid, set.par.POINT);
    return written;
}

Status Load_FID_Work(GlobalBlock& g)
{
    const DataSet& set = TransformSet(g);
    if (g.NoFIDFile) {
        const bool loaded =
            g.WorkRe.rows() >= RowsOf(set) && g.WorkRe.columns() > static_cast<std::size_t>(std::max(set.par.POINT, 0));
        if (loaded) return {};
        return Failure(ErrorCode::not_found, "The FID could not be kept and can't be transformed again.");
    }
    auto fid = FetchFid(g, set);
    if (!fid) return fid.error();
    UnpackBoth(g, *fid, set.par.POINT);
    return {};
}

void Auto_ZeroFill(GlobalBlock& g, std::int16_t slot)
{
    const std::int32_t wanted = g.settings.zerofillsize;
    if (g.settings.auto_zerofill != 1 || wanted < 1 || wanted >= kZeroFillLimit || !MayRefill(g, slot)) return;
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    // The transform takes powers of two only.
    const auto size = static_cast<double>(std::bit_ceil(static_cast<std::uint32_t>(wanted)));
    const std::int32_t factor = RoundHalfEven(size / set.par.FIDPointsRaw);
    set.ProcMark1 = 1;
    if (factor < 2 || !IsTransformLength(factor)) return;
    if (const Status filled = Refill(g, slot, factor); !filled) set.Warnings.push_back(filled.error().text);
}

bool Zero_Fill_Double(GlobalBlock& g, std::int16_t slot)
{
    if (!MayRefill(g, slot)) return false;
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    const std::int32_t factor = 2 * std::max(set.ProcMark1, 1);
    if (static_cast<std::int64_t>(set.par.FIDPointsRaw) * factor >= kZeroFillLimit) return false;
    // A window that can't be computed for the new length is reported when it is set, not here.
    static_cast<void>(Refill(g, slot, factor));
    return set.ProcMark1 == factor;
}

Status Set_Zero_Fill(GlobalBlock& g, std::int16_t slot, std::int32_t factor)
{
    if (!MayRefill(g, slot)) return Failure(ErrorCode::not_found, "There is no kept FID.");
    const DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    const bool power_of_two = factor > 0 && (factor & (factor - 1)) == 0;
    if (!power_of_two || static_cast<std::int64_t>(set.par.FIDPointsRaw) * factor > kMaxPoints)
        return Failure(ErrorCode::bad_value, "The zero fill must be a power of two within the largest length.");
    return Refill(g, slot, factor);
}

} // namespace nmr
