#include "core/undo_parts.h"

#include "core/global_block.h"
#include "core/param_edit.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <variant>

namespace nmr {
namespace {

struct Keep {
    template <class T>
    void operator()(T& live, T& kept) const
    {
        kept = live;
    }
};
struct Swap {
    template <class T>
    void operator()(T& live, T& kept) const
    {
        std::swap(live, kept);
    }
};

DataSet& LiveSet(GlobalBlock& g, const UndoStep& step)
{
    return g.Slots[static_cast<std::size_t>(step.Slot)];
}

// The members of a record, parameters or set, that go with a part.
template <class Record, class... Members, class Op>
void EachOf(Record& live, Record& kept, Op op, Members... members)
{
    (op(live.*members, kept.*members), ...);
}

/// Whether the set differs from its file is part of every step that changes the set.
struct WorkFlags {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        EachOf(LiveSet(g, step).par, step.Extra.set.par, op, &ParamBlock::DataChanged, &ParamBlock::DataFromFile);
    }
};

struct Points {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        EachOf(LiveSet(g, step).par, step.Extra.set.par, op, &ParamBlock::DataMax, &ParamBlock::DataMin,
               &ParamBlock::DispLeft, &ParamBlock::DispRight, &ParamBlock::YMag, &ParamBlock::YOffset,
               &ParamBlock::BaseLineDone, &ParamBlock::BaseValue);
    }
};

struct Phase {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        EachOf(LiveSet(g, step).par, step.Extra.set.par, op, &ParamBlock::PhaseP0, &ParamBlock::PhaseFlag,
               &ParamBlock::PhaseWord1, &ParamBlock::PhaseWord2, &ParamBlock::PhaseWord3, &ParamBlock::PhaseWord4to5,
               &ParamBlock::PhaseWord6, &ParamBlock::PhaseWord7to13);
        EachPhaseWord(g, step.Extra, op);
    }
};

struct Peaks {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        // The list alone: levels that were moved after a picking with too many peaks are for the next one.
        op(LiveSet(g, step).Peaks, step.OldPeaks);
    }
};

struct IntegralList {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        DataSet &live = LiveSet(g, step), &kept = step.Extra.set;
        op(live.Integrals, step.OldIntegrals);
        EachOf(live, kept, op, &DataSet::IntegralRef, &DataSet::IntegralScale, &DataSet::IntegralAux,
               &DataSet::IntegralOffset, &DataSet::IntegralDigits);
    }
};

struct Views {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        op(LiveSet(g, step).MultiViews, step.Extra.set.MultiViews);
    }
};

struct Regions {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        op(LiveSet(g, step).Regions, step.Extra.set.Regions);
    }
};

struct Reference {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        DataSet& live = LiveSet(g, step);
        UndoExtra& extra = step.Extra;
        // The whole axis: one that a file gave need not follow from first point and step.
        op(live.spec.XAxis, extra.set.spec.XAxis);
        op(live.Regions, extra.set.Regions); // absolute positions, which go along with the axis
        EachOf(live.par, extra.set.par, op, &ParamBlock::SMEXR, &ParamBlock::RefX, &ParamBlock::SMTMS,
               &ParamBlock::RefState, &ParamBlock::OBFRQ0PPM, &ParamBlock::OBFRQ0PPMRead, &ParamBlock::ObsCenter,
               &ParamBlock::SpanOrg, &ParamBlock::FREQU, &ParamBlock::RESOL, &ParamBlock::Resolution2,
               &ParamBlock::PhaseWord1);
        op(g.ViewLeft, extra.ViewLeft);
        op(g.ViewRight, extra.ViewRight);
        op(g.ShownHzLeft, extra.ShownHzLeft);
        op(g.ShownHzRight, extra.ShownHzRight);
        op(g.LastObsCenter, extra.LastObsCenter);
        op(g.LastCentre, extra.LastCentre);
        op(g.GroupObsCenter, extra.GroupObsCenter);
        op(g.GroupCentre, extra.GroupCentre);
    }
};

struct Labels {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        EachOf(LiveSet(g, step), step.Extra.set, op, &DataSet::XLabelPpm, &DataSet::XLabelHz, &DataSet::XLabelKHz);
        op(g.settings.xlabel, step.Extra.labels[0]);
        op(g.settings.xlabel_hz, step.Extra.labels[1]);
        op(g.settings.xlabel_khz, step.Extra.labels[2]);
    }
};

template <class Op>
struct FieldVisitor {
    ParamBlock &live, &kept;
    Op op;
    template <class T>
    void operator()(T ParamBlock::*member) const
    {
        op(live.*member, kept.*member);
    }
    template <class T, std::size_t N>
    void operator()(const ElementOf<T, N>& element) const
    {
        op((live.*element.member)[element.index], (kept.*element.member)[element.index]);
    }
};

struct Parameters {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        ParamBlock &live = LiveSet(g, step).par, &kept = step.Extra.set.par;
        for (const ParamEditRow& row : ParamEditRows())
            if (const ParamField* field = FindParamByName(row.name))
                std::visit(FieldVisitor<Op>{live, kept, op}, field->member);
        EachOf(live, kept, op, &ParamBlock::DateSerial, &ParamBlock::TimeOfDay, &ParamBlock::RefX);
    }
};

constexpr std::int32_t Settings::*kGridSwitches[] = {&Settings::display_grid, &Settings::grid_x_auto,
                                                     &Settings::grid_y_auto};
constexpr double Settings::*kGridNumbers[] = {&Settings::grid_width, &Settings::grid_x_inc, &Settings::grid_x_inc_hz,
                                              &Settings::grid_y_inc};
constexpr std::int32_t Settings::*kArraySwitches[] = {&Settings::disp_array_mode, &Settings::disp_array_direction,
                                                      &Settings::disp_array_number};
constexpr double Settings::*kDeptNumbers[] = {&Settings::dept_ch2_45, &Settings::dept_ch2_135, &Settings::dept_ch3_45,
                                              &Settings::dept_ch3_90, &Settings::dept_ch3_135, &Settings::dept_ch_mul,
                                              &Settings::dept_ch_135, &Settings::dept_ch_45,   &Settings::dept_ch_90};
static_assert(std::size(kArraySwitches) <= std::tuple_size_v<decltype(UndoExtra::switches)>);
static_assert(std::size(kDeptNumbers) <= std::tuple_size_v<decltype(UndoExtra::numbers)>);

template <class Members, class Kept, class Op>
void EachSetting(Settings& live, const Members& members, Kept& kept, Op op)
{
    for (std::size_t i = 0; i < std::size(members); ++i) op(live.*members[i], kept[i]);
}

constexpr double Settings::*kMultiNumbers[] = {&Settings::multi_spec_shift};

template <class OnSwitch, class OnNumber>
void EachUndoSetting(OnSwitch on_switch, OnNumber on_number)
{
    for (const auto member : kGridSwitches) on_switch(member);
    for (const auto member : kArraySwitches) on_switch(member);
    for (const auto member : kGridNumbers) on_number(member);
    for (const auto member : kDeptNumbers) on_number(member);
    for (const auto member : kMultiNumbers) on_number(member);
}

struct Grid {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        EachSetting(g.settings, kGridSwitches, step.Extra.switches, op);
        EachSetting(g.settings, kGridNumbers, step.Extra.numbers, op);
    }
};

struct ArrayDisplay {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        EachSetting(g.settings, kArraySwitches, step.Extra.switches, op);
        op(g.ArrayMode, step.Extra.ArrayMode);
        op(g.ArrayReverse, step.Extra.ArrayReverse);
    }
};

struct Dept {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        EachSetting(g.settings, kDeptNumbers, step.Extra.numbers, op);
        op(g.DEPTMode, step.Extra.DEPTMode);
    }
};

/// A set without its points, which stay where they are: a copy of them could be as large as the memory.
void Visit(DataSet& live, DataSet& kept, Keep)
{
    SpecBuffer points = std::move(live.spec);
    live.spec = SpecBuffer{};
    kept = live;
    live.spec = std::move(points);
}
void Visit(DataSet& live, DataSet& kept, Swap)
{
    std::swap(live, kept);
    std::swap(live.spec, kept.spec);
}

struct Multi {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        for (std::size_t i = 0; i < step.OldRows.size(); ++i)
            nmr::Visit(g.Slots[static_cast<std::size_t>(step.OldRows[i])], step.OldSets[i], op);
        EachSetting(g.settings, kMultiNumbers, step.Extra.numbers, op);
        op(g.DiffMode, step.Extra.DiffMode);
        op(g.DiffCount, step.Extra.DiffCount);
    }
};

struct BasePointList {
    template <class Op>
    static void Visit(GlobalBlock& g, UndoStep& step, Op op)
    {
        op(g.BasePoints, step.Extra.BasePoints);
    }
};

constexpr std::uint32_t kOfTheSet = kUndoPoints | kUndoPhase | kUndoPeaks | kUndoIntegrals | kUndoViews | kUndoRegions |
                                    kUndoReference | kUndoParameters | kUndoLabels;

struct PartRow {
    std::uint32_t parts; ///< any of them
    void (*keep)(GlobalBlock&, UndoStep&);
    void (*exchange)(GlobalBlock&, UndoStep&);
};

template <class Part>
constexpr PartRow Row(std::uint32_t parts)
{
    return {parts, [](GlobalBlock& g, UndoStep& step) { Part::Visit(g, step, Keep{}); },
            [](GlobalBlock& g, UndoStep& step) { Part::Visit(g, step, Swap{}); }};
}

constexpr PartRow kParts[] = {
    Row<WorkFlags>(kOfTheSet),
    Row<Points>(kUndoPoints),
    Row<Phase>(kUndoPhase),
    Row<Peaks>(kUndoPeaks),
    Row<IntegralList>(kUndoIntegrals),
    Row<Views>(kUndoViews),
    Row<Regions>(kUndoRegions),
    Row<Reference>(kUndoReference),
    Row<Labels>(kUndoLabels),
    Row<Parameters>(kUndoParameters),
    Row<Grid>(kUndoGrid),
    Row<ArrayDisplay>(kUndoArrayDisplay),
    Row<Multi>(kUndoMulti),
    Row<Dept>(kUndoDept),
    Row<BasePointList>(kUndoBasePoints),
};

} // namespace

void KeepParts(GlobalBlock& g, UndoStep& step, std::uint32_t parts)
{
    for (const PartRow& row : kParts)
        if ((row.parts & parts) != 0) row.keep(g, step);
}

void ExchangeParts(GlobalBlock& g, UndoStep& step, std::uint32_t parts)
{
    for (const PartRow& row : kParts)
        if ((row.parts & parts) != 0) row.exchange(g, step);
}

UndoSettings TakeUndoSettings(const Settings& settings)
{
    UndoSettings values;
    EachUndoSetting([&](std::int32_t Settings::*member) { values.switches.push_back(settings.*member); },
                    [&](double Settings::*member) { values.numbers.push_back(settings.*member); });
    return values;
}

bool PutUndoSettings(Settings& settings, const UndoSettings& values)
{
    const UndoSettings now = TakeUndoSettings(settings);
    if (values.switches.size() != now.switches.size() || values.numbers.size() != now.numbers.size()) return false;
    auto next_switch = values.switches.begin();
    auto next_number = values.numbers.begin();
    EachUndoSetting([&](std::int32_t Settings::*member) { settings.*member = *next_switch++; },
                    [&](double Settings::*member) { settings.*member = *next_number++; });
    return true;
}

} // namespace nmr
