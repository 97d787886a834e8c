#include "formats/csv.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/param_table.h"
#include "core/text.h"
#include "formats/probes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr char kWhere[] = "ReadDataCSV/1DDRW";
constexpr int kCsvFamily = 14;
constexpr std::uint64_t kMaxFile = std::uint64_t{1} << 30;
constexpr double kMaxValue = 1e30;
constexpr double kAssumedMHz = 1.0; ///< shifts then count Hz
constexpr double kHalfStep = 0.5;
constexpr std::string_view kBlockStart = "$CSVSTART";

DataSet& SlotOf(const ReadRequest& request)
{
    return request.g.Slots[static_cast<std::size_t>(request.slot)];
}

Error Refused(ErrorCode code, std::string text)
{
    return Error{code, kWhere, std::move(text)};
}

// ---- from the table to rows of points

/// The points of a table, before they have a place in the slot.
struct Points {
    std::size_t count = 0, rows = 0;
    std::vector<double> position;
    bool has_imaginary = false;
    std::size_t short_rows = 0, left_out = 0, odd_rows = 0;
};

/// Where a point of a row stands in the table.
class PointSource {
public:
    PointSource(const CsvTable& table, const CsvChoice& choice) : table_(table), choice_(choice)
    {
        choice.layout == CsvLayout::columns ? FindLines() : FindRows();
    }
    const Points& points() const { return points_; }

    /// A part of a point; missing ones are 0.
    double At(std::size_t row, std::size_t point, bool imaginary) const
    {
        if (choice_.layout == CsvLayout::columns) {
            const auto& columns = imaginary ? choice_.imaginary : choice_.real;
            return table_.line(lines_[point])[static_cast<std::size_t>(columns[row]) - 1];
        }
        const auto line = table_.line(lines_[row]);
        const std::size_t at = choice_.layout == CsvLayout::pairs ? 2 * point + (imaginary ? 1 : 0) : point;
        return at < line.size() ? line[at] : 0;
    }

private:
    /// Columns: the lines that have all columns asked for.
    void FindLines()
    {
        int most = choice_.position;
        for (const auto* columns : {&choice_.real, &choice_.imaginary})
            for (const int column : *columns) most = std::max(most, column);
        for (std::size_t i = 0; i < table_.lines(); ++i) {
            if (table_.line(i).size() < static_cast<std::size_t>(most))
                ++points_.left_out;
            else
                lines_.push_back(i);
        }
        points_.count = lines_.size();
        points_.rows = choice_.real.size();
        points_.has_imaginary = !choice_.imaginary.empty();
        if (choice_.position == 0) return;
        points_.position.reserve(lines_.size());
        for (const std::size_t i : lines_)
            points_.position.push_back(table_.line(i)[static_cast<std::size_t>(choice_.position) - 1]);
    }

    /// Rows: lines of less than half the length of the longest are none, so that no short file can ask
    /// for many long rows.
    void FindRows()
    {
        const std::size_t parts = choice_.layout == CsvLayout::pairs ? 2 : 1;
        const auto position_line = static_cast<std::size_t>(choice_.position);
        std::size_t longest = 0;
        for (std::size_t i = 0; i < table_.lines(); ++i)
            if (i + 1 != position_line) longest = std::max(longest, table_.line(i).size());
        for (std::size_t i = 0; i < table_.lines(); ++i) {
            const std::size_t size = table_.line(i).size();
            if (i + 1 == position_line) {
                points_.position.assign(table_.line(i).begin(), table_.line(i).end());
                continue;
            }
            if (2 * size < longest) {
                ++points_.left_out;
                continue;
            }
            points_.short_rows += size < longest ? 1 : 0;
            points_.odd_rows += size % parts;
            lines_.push_back(i);
        }
        points_.count = longest / parts;
        points_.rows = lines_.size();
        points_.has_imaginary = parts == 2;
    }

    const CsvTable& table_;
    const CsvChoice& choice_;
    std::vector<std::size_t> lines_; ///< of the points, or of the rows
    Points points_;
};

Status CheckSize(const Points& points)
{
    if (points.count > static_cast<std::size_t>(kMaxPoints) || points.rows > static_cast<std::size_t>(kMaxRows))
        return Refused(ErrorCode::too_large, fmt::format("{} points in {} rows", points.count, points.rows));
    if (points.count < 2 || points.rows < 1) return Refused(ErrorCode::truncated, "The file holds no table of points");
    return {};
}

void StorePoints(const PointSource& source, DataSet& set)
{
    std::uint64_t damaged = 0;
    for (std::size_t row = 0; row < source.points().rows; ++row)
        for (const bool imaginary : {false, true}) {
            if (imaginary && !source.points().has_imaginary) continue;
            auto target = (imaginary ? set.spec.DataIm : set.spec.DataRe)[row];
            for (std::size_t i = 0; i < source.points().count; ++i) {
                const double value = source.At(row, i, imaginary);
                const bool sound = std::fabs(value) <= kMaxValue;
                target[i] = sound ? static_cast<float>(value) : 0.0F;
                damaged += sound ? 0 : 1;
            }
        }
    if (damaged > 0)
        set.Warnings.push_back(fmt::format("{} values are too large for points and read as zero.", damaged));
}

// ---- positions

double UnitFactor(CsvUnit unit, double mhz)
{
    switch (unit) {
    case CsvUnit::hz:
        return 1 / mhz;
    case CsvUnit::khz:
        return 1e3 / mhz;
    case CsvUnit::ms:
        return 1e-3;
    case CsvUnit::us:
        return 1e-6;
    case CsvUnit::ppm:
    case CsvUnit::s:
        break;
    }
    return 1;
}

double Step(const std::vector<double>& positions)
{
    return (positions.back() - positions.front()) / static_cast<double>(positions.size() - 1);
}

bool IsEven(const std::vector<double>& positions)
{
    const double step = Step(positions);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double even = positions.front() + static_cast<double>(i) * step;
        if (std::fabs(positions[i] - even) > kHalfStep * std::fabs(step)) return false;
    }
    return true;
}

bool IsMonotone(const std::vector<double>& positions)
{
    const bool rises = positions.back() > positions.front();
    for (std::size_t i = 1; i < positions.size(); ++i)
        if (rises ? !(positions[i] > positions[i - 1]) : !(positions[i] < positions[i - 1])) return false;
    return true;
}

/// The row as it would stand on an axis of even steps, by straight lines between its points.
void SpreadEvenly(const std::vector<double>& positions, std::span<float> row)
{
    const std::vector<float> old(row.begin(), row.end());
    const double step = Step(positions), sign = step > 0 ? 1 : -1;
    std::size_t below = 0;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double at = positions.front() + static_cast<double>(i) * step;
        while (below + 2 < positions.size() && sign * positions[below + 1] <= sign * at) ++below;
        const double part = std::clamp((at - positions[below]) / (positions[below + 1] - positions[below]), 0.0, 1.0);
        row[i] = static_cast<float>((1 - part) * static_cast<double>(old[below]) +
                                    part * static_cast<double>(old[below + 1]));
    }
}

void SetAxis(DataSet& set, double first_ppm, double step_ppm)
{
    ParamBlock& par = set.par;
    par.RefX = par.SMEXR = static_cast<float>(first_ppm);
    par.SMTMS = 0;
    par.Resolution2 = step_ppm;
    par.RESOL = std::fabs(step_ppm) * par.OBFRQ0PPM;
    par.FREQU = static_cast<float>(par.RESOL * par.POINT);
    for (std::size_t i = 0; i < set.spec.XAxis.size(); ++i)
        set.spec.XAxis[i] = first_ppm + static_cast<double>(i) * step_ppm;
}

/// The axis of a spectrum from the positions of its points.
Status PlaceSpectrum(DataSet& set, std::vector<double> positions, CsvUnit unit)
{
    const double factor = UnitFactor(unit, set.par.OBFRQ0PPM);
    for (double& position : positions) position *= factor;
    const double step = Step(positions);
    if (!(std::fabs(step) > 0) || !std::isfinite(step) || std::fabs(positions.front()) > kMaxValue)
        return Refused(ErrorCode::bad_value, "The positions of the points are all alike");
    if (!IsEven(positions)) {
        if (!IsMonotone(positions))
            return Refused(ErrorCode::bad_value, "The positions of the points neither rise nor fall all the way");
        for (std::size_t row = 0; row < set.spec.DataRe.rows(); ++row) {
            SpreadEvenly(positions, set.spec.DataRe[row].first(positions.size()));
            SpreadEvenly(positions, set.spec.DataIm[row].first(positions.size()));
        }
        set.Warnings.emplace_back(
            "The points do not stand at even steps: the spectrum was drawn anew on an even axis.");
    }
    SetAxis(set, positions.front(), step);
    return {};
}

/// Without positions: the width around 0 ppm, high shifts first.
void PlaceAroundZero(DataSet& set)
{
    if (!(set.par.FREQU > 0)) {
        set.par.FREQU = static_cast<float>(set.par.POINT);
        set.Warnings.emplace_back(
            "The file gives no spectral width: positions count points from the middle (1 Hz each).");
    }
    const double step = -static_cast<double>(set.par.FREQU) / set.par.OBFRQ0PPM / set.par.POINT;
    SetAxis(set, -step * (set.par.POINT / 2), step);
    set.Warnings.emplace_back("The file gives no positions: the middle of the spectrum is put at 0 ppm.");
}

/// Width of a FID from the times of its points.
Status TimeFid(DataSet& set, const std::vector<double>& positions, CsvUnit unit, bool width_known)
{
    ParamBlock& par = set.par;
    const double dwell = positions.empty() ? 0 : Step(positions) * UnitFactor(unit, par.OBFRQ0PPM);
    if (!positions.empty() && !(dwell > 1e-12 && dwell < 1e6)) {
        if (!width_known) return Refused(ErrorCode::bad_value, "The times of the points do not rise");
        set.Warnings.emplace_back("The times of the points do not rise and were passed over.");
    } else if (!positions.empty()) {
        if (!IsEven(positions))
            set.Warnings.emplace_back("The times of the points are not even: their mean step counts.");
        if (!width_known) par.FREQU = static_cast<float>(1 / dwell);
    } else if (!(par.FREQU > 0)) {
        par.FREQU = static_cast<float>(par.POINT);
        set.Warnings.emplace_back(
            "The file gives no spectral width: positions count points of the spectrum (1 Hz each).");
    }
    if (par.ACQTM == 0) par.ACQTM = static_cast<float>(par.POINT / static_cast<double>(par.FREQU));
    return {};
}

// ---- both forms together

/// What both forms do once table and choice are there; `known` is what the head gave.
Status FillSet(const ReadRequest& request, const CsvTable& table, const CsvChoice& choice, const CsvHead& known)
{
    DataSet& set = SlotOf(request);
    if (!choice.imaginary.empty() && choice.imaginary.size() != choice.real.size())
        return Refused(ErrorCode::bad_value, "Real and imaginary columns differ in number");
    const PointSource source(table, choice);
    const Points& points = source.points();
    if (Status fits = CheckSize(points); !fits) return fits;
    if (!points.position.empty() && points.position.size() != points.count)
        return Refused(ErrorCode::bad_value, "Positions and points differ in number");
    const std::size_t left_out = table.left_out() + points.left_out;
    if (left_out > 0)
        set.Warnings.push_back(fmt::format("{} lines are no rows of the table and were left out.", left_out));
    if (points.short_rows > 0)
        set.Warnings.push_back(fmt::format("{} rows are shorter than the others: zeros fill them.", points.short_rows));
    if (points.odd_rows > 0) set.Warnings.emplace_back("A row ends with half a pair of real and imaginary value.");
    ParamBlock& par = set.par;
    par.SMODE = choice.smode;
    set.RowCount = static_cast<std::int32_t>(points.rows);
    if (Status made = AllocateSpecBuffer(request.g, static_cast<std::int32_t>(points.count), request.slot); !made)
        return made;
    par.POINT = static_cast<std::int32_t>(points.count);
    StorePoints(source, set);
    if (!known.has_ofr && !(par.OBFRQ0PPM > 0)) {
        par.ObsCenter = par.OBFRQ0PPM = kAssumedMHz;
        par.OBFRQ = static_cast<float>(kAssumedMHz);
        set.Warnings.emplace_back("The file gives no observe frequency: with the 1 MHz taken, ppm count Hz.");
    }
    if (points.rows > 1)
        for (std::size_t row = 0; row < points.rows; ++row) set.RowValueA[row] = static_cast<float>(row + 1);
    if (par.SMODE == 0) {
        if (Status timed = TimeFid(set, points.position, choice.unit, known.has_frequ); !timed) return timed;
        par.FIDPoints = par.POINT;
        par.FileRefMHz = par.OBFRQ0PPM;
        if (!points.has_imaginary)
            set.Warnings.emplace_back("The FID has no imaginary part: every line has a mirror image.");
    } else if (points.position.empty())
        PlaceAroundZero(set);
    else if (Status placed = PlaceSpectrum(set, points.position, choice.unit); !placed)
        return placed;
    return {};
}

void FinishSet(DataSet& set)
{
    ParamBlock& par = set.par;
    if (par.OBNUC.empty()) par.OBNUC = "1H";
    if (par.EXMOD.empty()) par.EXMOD = "CSV";
    par.DTYPE = "CSV";
    CopyDataToSource(set);
    if (par.SMODE == 1) FillDisplayLimits(set);
}

/// Lines beyond POINT go, too few are told: a cut file must not look like a short spectrum.
Result<std::string_view> LinesOfPoint(DataSet& set, std::string_view data, const CsvTable& table, const CsvHead& head)
{
    if (!head.point) {
        // What this program writes ends with an empty line.
        if (!table.ends_blank())
            set.Warnings.emplace_back(
                "The head gives no POINT and no empty line ends the file: points may be missing.");
        return data;
    }
    if (*head.point > kMaxPoints) return Refused(ErrorCode::too_large, fmt::format("{} points", *head.point));
    const auto wanted = static_cast<std::size_t>(*head.point);
    if (table.lines() < wanted)
        set.Warnings.push_back(fmt::format("The file is cut short: {} of {} points are there.", table.lines(), wanted));
    if (table.lines() <= wanted) return data;
    set.Warnings.push_back(fmt::format("{} lines beyond POINT were left out.", table.lines() - wanted));
    CsvLines lines(data);
    std::vector<double> numbers;
    std::string_view line;
    for (std::size_t taken = 0; taken < wanted && lines.Next(line);)
        taken += Split_Columns(line, {}, numbers) == 0 ? 1 : 0;
    return data.substr(0, data.size() - lines.rest().size());
}

/// Positions in ppm or s, then real and imaginary part; a single column is the real part.
CsvChoice BlockChoice(const CsvTable& table, const CsvSight& sight, const CsvHead& head, DataSet& set)
{
    CsvChoice choice = ProposeCsv(table, sight);
    if (head.has_smode)
        choice.smode = set.par.SMODE == 0 ? 0 : 1;
    else
        set.Warnings.emplace_back(choice.smode == 0 ? "The head gives no SMODE: the points are taken for a FID."
                                                    : "The head gives no SMODE: the points are taken for a spectrum.");
    choice.layout = CsvLayout::columns;
    choice.unit = choice.smode == 0 ? CsvUnit::s : CsvUnit::ppm;
    const bool alone = choice.columns < 2;
    choice.position = alone ? 0 : 1;
    choice.real = {alone ? 1 : 2};
    choice.imaginary.clear();
    if (choice.columns > 2) choice.imaginary = {3};
    return choice;
}

Status ReadBlock(const ReadRequest& request, std::string_view text)
{
    DataSet& set = SlotOf(request);
    CsvLines lines(text);
    std::string_view first;
    lines.Next(first);
    const CsvHead head = ReadCsvHead(lines, request.g.nuclides, set);
    if (!head.ended) return Refused(ErrorCode::truncated, "Invalid Data: the head has no $END, so there are no points");
    const CsvSight sight = LookAtCsv(lines.rest());
    auto table = CsvTable::Parse(lines.rest(), sight.text, 0);
    if (!table) return table.error();
    const auto data = LinesOfPoint(set, lines.rest(), *table, head);
    if (!data) return data.error();
    if (data->size() < lines.rest().size()) table = CsvTable::Parse(*data, sight.text, 0);
    if (!table) return table.error();
    if (table->ends_in_line()) set.Warnings.emplace_back("The last line has no end: it may be cut.");
    return FillSet(request, *table, BlockChoice(*table, sight, head, set), head);
}

/// The parameters of the form's answer.
CsvHead TakeParameters(const CsvChoice& choice, const NuclearTable& nuclides, DataSet& set)
{
    // As lines of a head, so that both forms have one way to read them.
    std::string text;
    for (const CsvParameter& row : kCsvParameters)
        if (const std::string& value = choice.Parameter(row.key); !value.empty())
            text += fmt::format("{},{},\n", row.key, value);
    CsvLines lines(text);
    return ReadCsvHead(lines, nuclides, set);
}

Status ReadTable(const ReadRequest& request, std::string_view text)
{
    const CsvChoice found = ProposeCsv(text);
    if (found.lines == 0)
        return Refused(ErrorCode::bad_format, "Invalid Data: neither a table of numbers nor $CSVSTART");
    const FormAnswer answer = request.asker.Form({kCsvForm, found.ToValues()});
    if (answer.dialog_result != "OK") return Refused(ErrorCode::cancelled, "Cancelled");
    const CsvChoice choice(answer.values);
    DataSet& set = SlotOf(request);
    CsvHead known = TakeParameters(choice, request.g.nuclides, set);
    known.has_frequ = known.has_frequ && choice.position == 0; // times rule where they are there
    const auto table = CsvTable::Parse(text, choice.text, choice.head_lines);
    if (!table) return table.error();
    if (table->ends_in_line()) set.Warnings.emplace_back("The last line has no end: it may be cut.");
    return FillSet(request, *table, choice, known);
}

} // namespace

FileType CsvFileType(const std::string& path, Asker& asker, const NuclearTable& nuclides)
{
    constexpr std::size_t kHead = 65536;
    FileType type;
    const auto real = ResolvePath(path);
    if (!real) return type;
    type.path = std::filesystem::absolute(*real).lexically_normal().string();
    const auto head = ReadFileHead(type.path, kHead);
    const ProbeAnswer answer = head ? ReadModeCSV(*head, {asker, nuclides}) : ProbeAnswer();
    if (answer.status != 0) return type;
    type.code = kOneDimensionalBit + kCsvFamily;
    type.tag = "CSV1";
    type.mode = answer.mode;
    type.directory = std::filesystem::path(type.path).parent_path().string();
    type.extension = ".CSV";
    return type;
}

Status ReadCsvText(const ReadRequest& request, std::string_view text)
{
    text = WithoutMark(text);
    Status read = text.starts_with(kBlockStart) ? ReadBlock(request, text) : ReadTable(request, text);
    if (read) FinishSet(SlotOf(request));
    return read;
}

Status ReadDataCSV(const ReadRequest& request)
{
    const auto bytes = ReadWholeFile(request.type.path, kMaxFile);
    if (!bytes) return Error{bytes.error().code, kWhere, bytes.error().text};
    return ReadCsvText(request, {reinterpret_cast<const char*>(bytes->data()), bytes->size()});
}

} // namespace nmr
