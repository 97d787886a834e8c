// Reading a JCAMP-DX file: which block, which tables, what they hold.

#include "formats/jcamp.h"

#include "core/file_layer.h"
#include "core/numbers.h"
#include "core/text.h"
#include "formats/jcamp_fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace nmr {

namespace {

constexpr std::string_view kWhere = "ReadDataJCAMP/1DDRW";
constexpr std::uint64_t kLargestFile = std::uint64_t{256} << 20;
constexpr double kMaxValue = 1e30;    // nothing an instrument writes comes near
constexpr double kMaxExponent = 100;  // of NC_proc
constexpr double kSameSweep = 0.01;   // of a FREQU that belongs to this table, relative
constexpr double kSmallestShape = 64; // points of a list of X and Y that may be a whole spectrum

Error Failure(ErrorCode code, std::string text)
{
    return {code, std::string(kWhere), std::move(text)};
}

DataSet& SlotOf(const ReadRequest& request)
{
    return request.g.Slots[static_cast<std::size_t>(request.slot)];
}

// --- Which block

/// A list of X and Y counts as a spectrum when it says how many points it has, and has many.
bool IsPointTable(const JcampBlock& block, const JcampTable& table)
{
    if (table.label == "XYDATA") return true;
    if (table.label == "DATATABLE") return table.symbol == 'R' || table.symbol == 'Y';
    if (NormalLabel(block.Value("DATACLASS")).starts_with("PEAK")) return false;
    return table.symbol == 'Y' && block.Number("NPOINTS").value_or(0) >= kSmallestShape;
}

const JcampTable* RealTable(const JcampBlock& block)
{
    const auto found = std::ranges::find_if(block.tables, [&](const JcampTable& t) { return IsPointTable(block, t); });
    return found == block.tables.end() ? nullptr : &*found;
}

const JcampTable* ImaginaryTable(const JcampBlock& block)
{
    const auto found = std::ranges::find_if(
        block.tables, [](const JcampTable& t) { return t.label == "DATATABLE" && t.symbol == 'I'; });
    return found == block.tables.end() ? nullptr : &*found;
}

bool IsOneDimensionalKind(JcampKind kind)
{
    return kind == JcampKind::fid || kind == JcampKind::spectrum;
}

bool HoldsFid(const JcampBlock& block)
{
    return NormalLabel(block.Value("DATATYPE")).find("NMRFID") != std::string::npos;
}

bool IsUsable(const JcampBlock& block)
{
    return (IsOneDimensionalKind(KindOf(block)) && RealTable(block) != nullptr) || IsArrayBlock(block);
}

/// Why no block of the file can be read.
Error NothingToRead(const JcampFile& file)
{
    const auto any = [&](auto holds) { return std::ranges::any_of(file.blocks, holds); };
    if (any([](const JcampBlock& b) { return KindOf(b) == JcampKind::two_dimensional; }))
        return Failure(ErrorCode::two_dimensional, "The JCAMP-DX file holds data of two dimensions");
    if (any([](const JcampBlock& b) { return KindOf(b) != JcampKind::none && b.tables.empty(); }))
        return Failure(ErrorCode::truncated, "The JCAMP-DX file has no table of points: it may be cut short");
    if (any([](const JcampBlock& b) { return KindOf(b) != JcampKind::none; }))
        return Failure(ErrorCode::bad_format, "The JCAMP-DX file holds peaks or assignments, but no FID or spectrum");
    return Failure(ErrorCode::not_nmr, "The JCAMP-DX file holds no NMR data");
}

std::string Caption(const JcampBlock& block, std::size_t number)
{
    const std::string_view title = block.Value("TITLE");
    return fmt::format("{}: {}{}{}", number, HoldsFid(block) ? "FID" : "Spectrum", title.empty() ? "" : ", ",
                       FromUnknownCodePage(Left(title, 40)));
}

Result<const JcampBlock*> NumberedBlock(const std::vector<const JcampBlock*>& blocks, std::string_view text)
{
    const auto number = ParseInteger(text);
    if (number && *number >= 1 && *number <= static_cast<std::int64_t>(blocks.size()))
        return blocks[static_cast<std::size_t>(*number - 1)];
    Error wrong =
        Failure(ErrorCode::bad_value, fmt::format("There is no data set {}, the file holds {}", text, blocks.size()));
    wrong.user_knows = true; // it is the asking that was wrong, not the file
    return wrong;
}

/// The user's choice of several blocks; what is no answer (no one is there to be asked) takes the first.
Result<const JcampBlock*> AskForBlock(const ReadRequest& request, const std::vector<const JcampBlock*>& blocks)
{
    constexpr std::size_t kMostButtons = 8;
    constexpr std::string_view kCancel = "Cancel";
    const std::size_t shown = std::min(blocks.size(), kMostButtons);
    FormRequest form{
        "Form110",
        {{"TITLE", std::string(kJcampTitle)}, {"TEXT", "The file holds several data sets. Read which one?"}}};
    form.values["COUNT"] = std::to_string(shown + 1);
    for (std::size_t i = 0; i < shown; ++i) form.values["BUTTON " + std::to_string(i + 1)] = Caption(*blocks[i], i + 1);
    form.values["BUTTON " + std::to_string(shown + 1)] = kCancel;
    const std::string answer = request.asker.Form(form).dialog_result;
    if (answer == kCancel) return Failure(ErrorCode::cancelled, "Cancelled");
    for (std::size_t i = 0; i < shown; ++i)
        if (answer == Caption(*blocks[i], i + 1)) return blocks[i];
    if (answer.starts_with(kBlockAnswer)) return NumberedBlock(blocks, answer.substr(kBlockAnswer.size()));
    SlotOf(request).Warnings.push_back(fmt::format("The file holds {} data sets; the first one ({}) was read.",
                                                   blocks.size(), HoldsFid(*blocks[0]) ? "a FID" : "a spectrum"));
    return blocks[0];
}

Result<const JcampBlock*> ChooseBlock(const ReadRequest& request, const JcampFile& file)
{
    std::vector<const JcampBlock*> usable;
    for (const JcampBlock& block : file.blocks)
        if (IsUsable(block)) usable.push_back(&block);
    if (usable.empty()) return NothingToRead(file);
    if (usable.size() == 1) return usable.front();
    return AskForBlock(request, usable);
}

// --- Columns

/// What the head says of X and of the ordinates, from either form.
struct Columns {
    JcampX x;
    double count = 0; ///< as the file counts; 0 when it does not
    double re_factor = 1, im_factor = 1;
    bool pages = false;
};

class ColumnLists {
public:
    explicit ColumnLists(const JcampBlock& block) : block_(block), symbols_(SplitColumns(block.Value("SYMBOL"), 0)) {}

    /// Column of a symbol; where there is no list of symbols, the usual order.
    std::size_t Find(std::string_view symbol) const
    {
        constexpr std::string_view kUsual = "XRI";
        for (std::size_t i = 0; i < symbols_.size(); ++i)
            if (ToUpper(symbols_[i]) == symbol) return i;
        if (!block_.Value("SYMBOL").empty() || symbol.size() != 1) return kNone;
        return kUsual.find(symbol == "Y" ? 'R' : symbol.front());
    }
    std::size_t Find(char symbol) const { return Find(std::string_view(&symbol, 1)); }
    std::string Text(std::string_view list, std::size_t column) const
    {
        const std::vector<std::string> values = SplitColumns(block_.Value(list), symbols_.size());
        return column < values.size() ? values[column] : std::string();
    }
    std::optional<double> Number(std::string_view list, std::size_t column) const
    {
        return JcampNumber(Text(list, column));
    }

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    const JcampBlock& block_;
    std::vector<std::string> symbols_;
};

/// A factor of 0 is one that was printed with too few digits.
double Factor(std::optional<double> given, std::string_view name, std::vector<std::string>& warnings)
{
    if (given && *given != 0 && std::isfinite(*given)) return *given;
    warnings.push_back(fmt::format("{} is {}: the values stand as they are stored.", name, given ? "0" : "missing"));
    return 1;
}

Columns PageColumns(const JcampBlock& block, const JcampTable& real, std::vector<std::string>& warnings)
{
    const ColumnLists lists(block);
    const bool array = KindOf(block) == JcampKind::two_dimensional;
    const std::size_t x = lists.Find(array ? std::string_view(real.abscissa) : "X"), re = lists.Find(real.symbol),
                      im = lists.Find('I');
    Columns columns;
    columns.pages = true;
    columns.x = {lists.Number("FIRST", x), lists.Number("LAST", x), lists.Number("FACTOR", x),
                 ToUpper(lists.Text("UNITS", x))};
    if (const auto delta = block.Number("DELTAX")) columns.x.delta = delta;
    // The count of an array's head is that of all rows together.
    const auto told = array ? std::nullopt : block.Number("NPOINTS");
    columns.count = told.value_or(lists.Number("VARDIM", x).value_or(lists.Number("VARDIM", re).value_or(0)));
    columns.re_factor = Factor(lists.Number("FACTOR", re), "The factor of the real page", warnings);
    if (ImaginaryTable(block) != nullptr)
        columns.im_factor = Factor(lists.Number("FACTOR", im), "The factor of the imaginary page", warnings);
    return columns;
}

Columns TableColumns(const JcampBlock& block, const JcampTable& table, std::vector<std::string>& warnings)
{
    Columns columns;
    columns.x = {block.Number("FIRSTX"), block.Number("LASTX"), block.Number("DELTAX"), ToUpper(block.Value("XUNITS"))};
    columns.count = block.Number("NPOINTS").value_or(0);
    // A list of X and Y holds the values themselves.
    if (table.label == "XYDATA") columns.re_factor = Factor(block.Number("YFACTOR"), "YFACTOR", warnings);
    return columns;
}

// --- Points

std::string FailureText(const AsdfReport& report, std::string_view page)
{
    switch (report.failure) {
    case AsdfReport::Failure::bad_character:
        return fmt::format("Line {} of {} holds a character that no number has", report.line, page);
    case AsdfReport::Failure::no_x:
        return fmt::format("Line {} of {} does not begin with a number", report.line, page);
    case AsdfReport::Failure::dup_first:
        return fmt::format("Line {} of {} begins with a repeat", report.line, page);
    case AsdfReport::Failure::too_many:
        return fmt::format("{} holds more points than the head says", page);
    case AsdfReport::Failure::none:
        break;
    }
    return {};
}

// --- Rows of an array

struct RowTables {
    const JcampTable* re = nullptr;
    const JcampTable* im = nullptr; ///< nullptr: there is none
};

/// A row for each page of real values; the imaginary page of a row has the same name.
std::vector<RowTables> ArrayRows(const JcampBlock& block)
{
    std::vector<RowTables> rows;
    for (const JcampTable& table : block.tables) {
        if (table.label != "DATATABLE") continue;
        if (table.symbol == 'R' || table.symbol == 'Y')
            rows.push_back({&table});
        else if (table.symbol == 'I' && !rows.empty() && rows.back().re->page == table.page)
            rows.back().im = &table;
    }
    return rows;
}

/// "T1=0.01"
std::optional<double> PageValue(std::string_view page)
{
    const std::size_t equals = page.find('=');
    return equals == page.npos ? std::nullopt : JcampNumber(page.substr(equals + 1));
}

/// The values of the pages, when they are times; empty when they are not, or one is missing.
std::vector<double> PageTimes(const JcampBlock& block, const std::vector<RowTables>& rows)
{
    std::vector<double> times;
    if (rows.empty()) return times;
    const std::string_view first = rows.front().re->page;
    const ColumnLists lists(block);
    const std::string units = ToUpper(lists.Text("UNITS", lists.Find(ToUpper(Trim(first.substr(0, first.find('=')))))));
    if (!units.starts_with("SEC")) return times;
    for (const RowTables& row : rows) {
        const auto value = PageValue(row.re->page);
        if (!value || !std::isfinite(*value)) return {};
        times.push_back(*value);
    }
    return times;
}

bool IsEven(const std::vector<double>& values)
{
    if (values.size() < 3) return false;
    const double step = (values.back() - values.front()) / static_cast<double>(values.size() - 1);
    for (std::size_t i = 0; i < values.size(); ++i)
        if (std::fabs(values[i] - values.front() - static_cast<double>(i) * step) > 0.01 * std::fabs(step))
            return false;
    return true;
}

BrukerParameters SecondDimension(const JcampBlock& block)
{
    auto parsed = BrukerParameters::Parse(std::as_bytes(std::span(block.bruker_f1)));
    return parsed ? std::move(*parsed) : BrukerParameters();
}

/// Reads one block into a slot.
class BlockReader {
public:
    BlockReader(const ReadRequest& request, const JcampBlock& block, bool file_ended) :
        request_(request), block_(block), set_(SlotOf(request)), par_(set_.par), is_fid_(HoldsFid(block)),
        is_array_(KindOf(block) == JcampKind::two_dimensional), complete_(block.ended && file_ended)
    {
    }

    Status Run()
    {
        rows_ = is_array_ ? ArrayRows(block_) : std::vector<RowTables>{{RealTable(block_), ImaginaryTable(block_)}};
        DropUnmeasured();
        const JcampTable& table = *rows_.front().re;
        head_ = FillJcampFields(block_, request_.g.nuclides, set_);
        par_.SMODE = is_fid_ ? 0 : 1;
        par_.DataKind =
            static_cast<std::int16_t>(is_fid_ ? par_.DataKind & ~kSpectrumBit : par_.DataKind | kSpectrumBit);
        if (!complete_) Warn("The file ends without its ##END: it may be cut short.");
        columns_ = table.label == "DATATABLE" ? PageColumns(block_, table, set_.Warnings)
                                              : TableColumns(block_, table, set_.Warnings);
        if (Status counted = CheckCount(); !counted) return counted;
        for (row_ = 0; row_ < rows_.size(); ++row_)
            if (Status read = ReadRow(rows_[row_]); !read) return read;
        FillRowValues();
        return is_fid_ ? FillFid() : FillSpectrum();
    }

private:
    /// The vendor's program fills rows up to a power of two with zeros.
    void DropUnmeasured()
    {
        if (!is_array_) return;
        const double measured = SecondDimension(block_).Number("TD").value_or(0);
        if (!(measured >= 1) || measured >= static_cast<double>(rows_.size())) return;
        Warn(fmt::format("{} of {} rows were measured, the others are left out.", measured, rows_.size()));
        rows_.resize(static_cast<std::size_t>(measured));
    }

    Status ReadRow(const RowTables& row)
    {
        if (Status decoded = DecodeReal(*row.re); !decoded) return decoded;
        if (Status decoded = DecodeImaginary(row.im); !decoded) return decoded;
        if (row_ == 0)
            if (Status made = MakeRoom(); !made) return made;
        StoreRow(re_, columns_.re_factor * Scale(), set_.spec.DataRe[row_]);
        StoreRow(im_, columns_.im_factor * Scale() * (TurnsAsJeol() ? -1 : 1), set_.spec.DataIm[row_]);
        return {};
    }

    void FillRowValues()
    {
        if (!is_array_) return;
        const std::vector<double> times = PageTimes(block_, rows_);
        if (times.empty() || !block_.list.empty()) {
            SetBrukerRowValues({block_.list_name, block_.list}, set_);
            return;
        }
        set_.par.RowCountCopy = set_.RowCount;
        std::ranges::transform(times, set_.RowValueA.begin(), [](double time) { return static_cast<float>(time); });
        const std::string_view page = rows_.front().re->page;
        set_.RowParamName = std::string(Trim(page.substr(0, page.find('='))));
        set_.RowParamUnit = "s";
        set_.RowHeading = "t(s)";
    }

    /// "the table", "the real page", "the real page of row 3".
    std::string PageName(std::string_view part) const
    {
        if (!columns_.pages) return "the table";
        return fmt::format("the {} page{}", part, is_array_ ? fmt::format(" of row {}", row_ + 1) : std::string());
    }

    void Warn(std::string text) { set_.Warnings.push_back(std::move(text)); }

    const BrukerParameters* bruker() const { return head_.bruker ? &*head_.bruker : nullptr; }

    Status CheckCount()
    {
        const double count = std::round(columns_.count);
        if (count > kMaxPoints + 1.0) return Failure(ErrorCode::too_large, "Data is too Large, or Parameter Error");
        if (columns_.count != 0 && !(count >= 1)) return Failure(ErrorCode::bad_value, "NPOINTS can't be right");
        declared_ = static_cast<std::size_t>(count);
        return {};
    }

    Status Decode(const JcampTable& table, std::string_view page, std::vector<double>& values)
    {
        const std::size_t limit = declared_ == 0 ? kMaxPoints : declared_ + 1;
        const AsdfReport report = DecodeAsdfTable(table.text, limit, values);
        if (report.failure != AsdfReport::Failure::none)
            return Failure(ErrorCode::bad_format, FailureText(report, page));
        if (report.failed_checks > 0)
            Warn(fmt::format("{} check values of {} differ from the points they repeat.", report.failed_checks, page));
        if (report.unknown > 0)
            Warn(fmt::format("{} unknown values (\"?\") of {} were left out.", report.unknown, page));
        const bool is_list = table.label == "XYPOINTS" || table.label == "PEAKTABLE";
        if (is_list) Warn("The file lists its points with their X: they were read as a spectrum.");
        if (report.misplaced > 0) {
            if (is_list) return Failure(ErrorCode::bad_format, "The points of the JCAMP-DX file have no even spacing");
            Warn(fmt::format("{} lines of {} stand at other X than the points before them ask for.", report.misplaced,
                             page));
        }
        return {};
    }

    Status DecodeReal(const JcampTable& table)
    {
        if (Status decoded = Decode(table, PageName("real"), re_); !decoded) return decoded;
        const std::size_t found = re_.size();
        if (row_ > 0) return CheckFurtherRow(found);
        if (found == 0) return Failure(ErrorCode::truncated, "The table of points is empty");
        points_ = declared_ == 0 ? found : declared_;
        if (declared_ == 0)
            Warn(fmt::format("The number of points is missing: the table holds {}.", found));
        else if (found != declared_ && complete_ && found + 1 >= declared_) {
            Warn(fmt::format("The table holds {} points, not {} as its head says: mended.", found, declared_));
            points_ = found;
        } else if (found > declared_) {
            return Failure(ErrorCode::bad_format, FailureText({AsdfReport::Failure::too_many}, "The table"));
        } else if (found < declared_) {
            Warn(fmt::format("The table holds {} of {} points, the rest is zero.", found, declared_));
        }
        if (points_ > static_cast<std::size_t>(kMaxPoints))
            return Failure(ErrorCode::too_large, "Data is too Large, or Parameter Error");
        columns_.x.count = static_cast<std::int32_t>(StepCount());
        CheckFirst();
        return {};
    }

    /// Rows behind the first one have its length.
    Status CheckFurtherRow(std::size_t found)
    {
        if (found > points_ + 1)
            return Failure(ErrorCode::bad_format, FailureText({AsdfReport::Failure::too_many}, PageName("real")));
        if (found < points_)
            Warn(fmt::format("Row {} holds {} of {} points, the rest is zero.", row_ + 1, found, points_));
        return {};
    }

    /// The ends of X belong to the points that are there, unless DELTAX fits the other count better.
    std::size_t StepCount() const
    {
        const JcampX& x = columns_.x;
        if (points_ == declared_ || declared_ < 2 || points_ < 2 || !x.first || !x.last || !x.delta) return points_;
        const double span = std::fabs(*x.last - *x.first), delta = std::fabs(*x.delta);
        const auto off = [&](std::size_t count) { return std::fabs(span / static_cast<double>(count - 1) - delta); };
        return off(declared_) < off(points_) ? declared_ : points_;
    }

    void CheckFirst()
    {
        const auto first = block_.Number("FIRSTY");
        if (!first || columns_.pages) return;
        const double value = re_.front() * columns_.re_factor;
        // Heads print it with six decimals, or with few digits.
        const double allowed = 1.01 * std::fabs(columns_.re_factor) + 1e-4 * std::fabs(value) + 1e-6;
        if (std::fabs(*first - value) > allowed)
            Warn(fmt::format("FIRSTY is {:.6g}, but the first point is {:.6g}.", *first, value));
    }

    Status DecodeImaginary(const JcampTable* table)
    {
        im_.clear();
        if (table != nullptr) {
            if (Status decoded = Decode(*table, PageName("imaginary"), im_); !decoded) return decoded;
            if (im_.size() > points_ + 1)
                return Failure(ErrorCode::bad_format,
                               FailureText({AsdfReport::Failure::too_many}, "The imaginary page"));
            if (im_.size() != points_)
                Warn(fmt::format("The imaginary page holds {} points, the real page {}.", im_.size(), re_.size()));
        } else if (row_ == 0 && is_fid_) {
            Warn("The FID has no imaginary part: every line has a mirror image at the other side of the carrier.");
        } else if (row_ == 0 && columns_.pages) {
            Warn("There is no imaginary page: the phase can't be changed.");
        }
        const auto is_extra = [](const JcampTable& t) { return t.label == "DATATABLE"; };
        if (!is_array_ && columns_.pages && std::ranges::count_if(block_.tables, is_extra) > (table != nullptr ? 2 : 1))
            Warn("The file has further pages, which were not read.");
        return {};
    }

    /// Spectra of Bruker programs are scaled by a power of two of their own.
    double Scale() const
    {
        if (is_fid_ || bruker() == nullptr) return 1;
        const double exponent = bruker()->Number("NC_proc").value_or(0);
        return std::fabs(exponent) <= kMaxExponent ? std::exp2(std::round(exponent)) : 1;
    }

    void StoreRow(const std::vector<double>& values, double factor, std::span<float> row)
    {
        const std::size_t count = std::min(values.size(), points_);
        std::size_t damaged = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const double value = values[i] * factor;
            const bool sound = std::fabs(value) <= kMaxValue; // false for NaN
            row[i] = sound ? static_cast<float>(value) : 0.0F;
            damaged += sound ? 0 : 1;
        }
        if (damaged > 0) Warn(fmt::format("{} values are beyond any instrument's and read as zero.", damaged));
    }

    /// Pages are held in a length that is a power of two, a single table in its own.
    Status MakeRoom()
    {
        par_.FIDPoints = static_cast<std::int32_t>(points_);
        par_.POINT = static_cast<std::int32_t>(columns_.pages ? std::bit_ceil(points_) : points_);
        set_.RowCount = static_cast<std::int32_t>(rows_.size());
        return AllocateSpecBuffer(request_.g, par_.POINT, request_.slot);
    }

    /// The registry's row holds for Bruker data and for programs that say nothing.
    bool TurnsAsJeol() const
    {
        if (!is_fid_ || block_.has_bruker) return false;
        return block_.has_jeol || ContainsNoCase(block_.Value("SPECTROMETERDATASYSTEM"), "JEOL");
    }

    Status FillFid()
    {
        const auto dwell = FindDwell(columns_.x, bruker());
        if (!dwell) return dwell.error();
        const double width = 1 / *dwell;
        par_.FREQU = static_cast<float>(width);
        par_.RESOL = width / par_.POINT;
        par_.ACQTM = static_cast<float>(static_cast<double>(points_) * *dwell);
        if (!block_.has_bruker && !TurnsAsJeol() && !ContainsNoCase(block_.Value("SPECTROMETERDATASYSTEM"), "BRUKER"))
            Warn("The file does not say which way its FID turns: it is read as FIDs of Bruker instruments are.");
        par_.GroupDelay = bruker() == nullptr ? 0 : BrukerGroupDelay(*bruker());
        par_.FileRefMHz = FidReference(block_, bruker(), par_.ObsCenter, width, par_.FIDPoints);
        if (bruker() != nullptr) set_.vendor = FindBrukerProcessing(*bruker(), par_);
        return {};
    }

    Status FillSpectrum()
    {
        const auto axis = FindJcampAxis(block_, bruker(), columns_.x, par_.ObsCenter, set_.Warnings);
        if (!axis) return axis.error();
        par_.RESOL = axis->step_hz;
        const double width = par_.RESOL * par_.POINT;
        const bool told = head_.sweep_hz && std::fabs(*head_.sweep_hz - width) <= kSameSweep * width;
        par_.FREQU = static_cast<float>(told ? *head_.sweep_hz : width);
        par_.RefX = par_.SMEXR = static_cast<float>(axis->first_ppm);
        par_.SMTMS = 0;
        par_.OBFRQ0PPM = axis->mhz0;
        if (axis->has_reference) par_.FileRefMHz = axis->mhz0;
        // Of the axis itself: RESOL over OBFRQ0PPM is another one where ppm count in the observe frequency, and
        // files that keep only the step would come back with every line shifted.
        par_.Resolution2 = axis->step_ppm;
        for (std::size_t i = 0; i < set_.spec.XAxis.size(); ++i)
            set_.spec.XAxis[i] = axis->first_ppm + static_cast<double>(i) * axis->step_ppm;
        if (!(par_.ObsCenter > 0)) { // the middle of the axis
            const double middle = axis->first_ppm + 0.5 * static_cast<double>(points_) * axis->step_ppm;
            par_.ObsCenter = axis->mhz0 * (1 + 1e-6 * middle);
            par_.OBFRQ = static_cast<float>(par_.ObsCenter);
        }
        CopyDataToSource(set_);
        FillDisplayLimits(set_);
        return {};
    }

    const ReadRequest& request_;
    const JcampBlock& block_;
    DataSet& set_;
    ParamBlock& par_;
    bool is_fid_;
    bool is_array_;
    bool complete_;
    JcampHead head_;
    Columns columns_;
    std::size_t declared_ = 0; ///< 0: the file does not say
    std::size_t points_ = 0;
    std::vector<RowTables> rows_;
    std::size_t row_ = 0; ///< that is being read
    std::vector<double> re_, im_;
};

} // namespace

JcampKind KindOf(const JcampBlock& block)
{
    const std::string type = NormalLabel(block.Value("DATATYPE"));
    const bool spectrum = type.find("NMRSPECTRUM") != type.npos, fid = type.find("NMRFID") != type.npos;
    if (!spectrum && !fid) return JcampKind::none;
    if (type.starts_with("ND") || block.Number("NUMDIM").value_or(1) > 1) return JcampKind::two_dimensional;
    return spectrum ? JcampKind::spectrum : JcampKind::fid;
}

bool IsArrayBlock(const JcampBlock& block)
{
    if (KindOf(block) != JcampKind::two_dimensional) return false;
    const std::vector<RowTables> rows = ArrayRows(block);
    if (rows.empty() || rows.size() > static_cast<std::size_t>(kMaxRows)) return false;
    if (!block.list.empty()) return HasNoQuadrature(SecondDimension(block));
    const std::vector<double> times = PageTimes(block, rows);
    return !times.empty() && !IsEven(times);
}

bool IsJcampArray(const FileType& type)
{
    const auto bytes = ReadWholeFile(type.path, kLargestFile);
    if (!bytes) return false;
    const JcampFile file = ScanJcamp({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
    return std::ranges::any_of(file.blocks, IsUsable);
}

Status ReadJcampBytes(const ReadRequest& request, std::string_view bytes)
{
    const JcampFile file = ScanJcamp(bytes);
    const auto block = ChooseBlock(request, file);
    if (!block) return block.error();
    return BlockReader(request, **block, file.ended).Run();
}

Status ReadDataJCAMP(const ReadRequest& request)
{
    const auto bytes = ReadWholeFile(request.type.path, kLargestFile);
    if (!bytes) return Failure(bytes.error().code, bytes.error().text);
    return ReadJcampBytes(request, {reinterpret_cast<const char*>(bytes->data()), bytes->size()});
}

} // namespace nmr
