#include "session/array_choice.h"

#include "session/fid_intake.h"
#include "session/forms.h"

#include <algorithm>
#include <vector>

namespace nmr {
namespace {

constexpr std::size_t kMultiSpectra = 20;
constexpr std::size_t kDeptSpectra = 4;

Error Cancelled()
{
    return {ErrorCode::cancelled, "NMR1D_m11_Click/1DF1", "Cancelled"};
}

bool IsSpread(ArrayUse use)
{
    return use == ArrayUse::multi || use == ArrayUse::dept;
}

void Remember(GlobalBlock& g, ArrayUse use, bool descending)
{
    const bool by_parameter = use == ArrayUse::by_parameter;
    g.ReadAsArray = by_parameter ? 1 : 0;
    g.settings.array_sort = !by_parameter ? 0 : descending ? 2 : 1;
    g.settings.dept_mode = use == ArrayUse::dept ? 1 : 0;
}

/// The row of each new spectrum, in the order of the slots.
std::vector<std::size_t> RowsOfSlots(std::size_t rows, ArrayUse use)
{
    if (use == ArrayUse::dept && rows == 3) return {0, 1, 1, 2};
    std::vector<std::size_t> order(std::min(rows, use == ArrayUse::dept ? kDeptSpectra : kMultiSpectra));
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    return order;
}

void CopyRow(const RowArray<float>& from, std::size_t row, RowArray<float>& to)
{
    std::copy_n(from[row].begin(), std::min(from.columns(), to.columns()), to[0].begin());
}

void SetLimits(DataSet& set)
{
    set.par.DispLeft = 0; // of all rows so far
    FillDisplayLimits(set);
    FillDataLimits(set, 0);
    set.par.YFill = 0.95F;
    set.par.YMag = set.par.DataMax / set.par.YFill;
    set.par.YOffset = set.par.DataMin;
}

/// A spectrum of its own from one row.
Status MakeSpectrum(GlobalBlock& g, std::size_t slot, const DataSet& head, const SpecBuffer& rows, std::size_t row)
{
    DataSet& set = g.Slots[slot];
    const std::int16_t number = set.par.SlotNumber;
    set = head;
    set.par.SlotNumber = number;
    set.RowCount = set.par.RowCountCopy = 1;
    set.RowValueA.fill(0);
    set.RowValueB.fill(0);
    set.RowValueA[0] = head.RowValueA[row];
    set.RowValueB[0] = head.RowValueB[row];
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, static_cast<std::int16_t>(slot)); !made) return made;
    SpecBuffer& spec = set.spec;
    spec.XAxis = rows.XAxis;
    CopyRow(rows.DataRe, row, spec.DataRe);
    CopyRow(rows.DataIm, row, spec.DataIm);
    CopyRow(rows.SourceRe, row, spec.SourceRe);
    CopyRow(rows.SourceIm, row, spec.SourceIm);
    SetLimits(set);
    return {};
}

/// Which row the form of the transform shows and phases; false when the read is to end.
bool AskPhaseRow(Session& s)
{
    const std::string word = s.asker.Form({forms::kPhaseRow, {}}).dialog_result;
    if (word != forms::kFirstRow && word != forms::kLastRow) return false;
    const std::int32_t last = s.g.Slots[0].RowCount - 1;
    s.g.CurrentRow = word == forms::kLastRow ? static_cast<std::int16_t>(last) : std::int16_t{0};
    return true;
}

} // namespace

Result<ArrayUse> AskArrayUse(Session& s)
{
    const DataSet& set = s.g.Slots[0];
    if (set.RowCount < 2) return ArrayUse::single;
    const FormAnswer answer = s.asker.Form({forms::kArrayData, {{forms::kRows, std::to_string(set.RowCount)}}});
    if (answer.dialog_result != forms::kOk) return Cancelled();
    const auto mode = static_cast<int>(forms::Number(answer.values, forms::kArrayMode, 1));
    const auto use = static_cast<ArrayUse>(std::clamp(mode, 1, 4));
    Remember(s.g, use, forms::Text(answer.values, forms::kDescending) == "1");
    if (set.par.SMODE == 0 && !IsSpread(use) && !AskPhaseRow(s)) return Cancelled();
    return use;
}

Status SpreadRows(GlobalBlock& g, ArrayUse use)
{
    if (!IsSpread(use) || g.Slots[0].RowCount < 2) return {};
    const SpecBuffer rows = std::move(g.Slots[0].spec);
    const DataSet head = g.Slots[0];
    const std::vector<std::size_t> order = RowsOfSlots(static_cast<std::size_t>(head.RowCount), use);
    for (std::size_t slot = 0; slot < order.size(); ++slot)
        if (Status made = MakeSpectrum(g, slot, head, rows, order[slot]); !made) return made;
    g.CurrentRow = 0;
    g.NoFIDFile = true;
    return {};
}

} // namespace nmr
