#include "formats/asdf.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace nmr {

namespace {

// --- Characters

enum class Role : std::uint8_t { bad, separator, digit, plus, minus, point, sqz, dif, dup, question, dollar };

struct Symbol {
    Role role = Role::bad;
    std::int8_t digit = 0; ///< with the sign of its class
};

constexpr std::array<Symbol, 256> MakeSymbols()
{
    std::array<Symbol, 256> table{};
    const auto set = [&](char c, Role role, int digit = 0) {
        table[static_cast<unsigned char>(c)] = {role, static_cast<std::int8_t>(digit)};
    };
    for (char c : {' ', '\t', '\0', ',', ';'}) set(c, Role::separator);
    for (int d = 0; d < 10; ++d) set(static_cast<char>('0' + d), Role::digit, d);
    set('+', Role::plus);
    set('-', Role::minus);
    set('.', Role::point);
    set('?', Role::question);
    set('$', Role::dollar);
    set('@', Role::sqz);
    set('%', Role::dif);
    for (int d = 1; d < 10; ++d) {
        set(static_cast<char>('A' + d - 1), Role::sqz, d);
        set(static_cast<char>('a' + d - 1), Role::sqz, -d);
        set(static_cast<char>('J' + d - 1), Role::dif, d);
        set(static_cast<char>('j' + d - 1), Role::dif, -d);
        if (d < 9) set(static_cast<char>('S' + d - 1), Role::dup, d);
    }
    set('s', Role::dup, 9);
    return table;
}
constexpr std::array<Symbol, 256> kSymbols = MakeSymbols();

constexpr Symbol SymbolOf(char c)
{
    return kSymbols[static_cast<unsigned char>(c)];
}

constexpr bool IsDigit(char c)
{
    return SymbolOf(c).role == Role::digit;
}

// --- Numbers

constexpr std::array<double, 23> kPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                         1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// A power of ten up to 1e22 is exact, so that a value of up to 15 digits comes out correctly rounded.
double Scaled(double mantissa, int exponent)
{
    constexpr int kExact = static_cast<int>(kPowers.size()) - 1;
    if (mantissa == 0) return 0; // times a power beyond all numbers it would be none
    if (exponent >= 0)
        return exponent <= kExact ? mantissa * kPowers[static_cast<std::size_t>(exponent)]
                                  : mantissa * std::pow(10.0, exponent);
    if (-exponent <= kExact) return mantissa / kPowers[static_cast<std::size_t>(-exponent)];
    // In two steps: the power alone may be too small for a double.
    return mantissa * std::pow(10.0, exponent / 2) * std::pow(10.0, exponent - exponent / 2);
}

/// Digits gathered as a whole number as long as that holds them exactly.
struct Digits {
    std::uint64_t mantissa = 0;
    double large = 0; ///< in place of the mantissa once it would overflow
    bool is_large = false;
    int exponent = 0;

    void Add(std::int8_t digit)
    {
        constexpr std::uint64_t kLast = 100'000'000'000'000'000; // one more digit still fits
        if (!is_large && mantissa < kLast) {
            mantissa = 10 * mantissa + static_cast<std::uint64_t>(digit);
            return;
        }
        if (!is_large) large = static_cast<double>(mantissa);
        is_large = true;
        large = 10 * large + digit;
    }
    double Value() const
    {
        const double whole = is_large ? large : static_cast<double>(mantissa);
        return exponent == 0 ? whole : Scaled(whole, exponent);
    }
};

/// Moves over an exponent at `p`, if there is one, and adds it.
void TakeExponent(std::string_view text, std::size_t& p, AsdfE e, Digits& digits)
{
    constexpr int kLargest = 10000;
    if (p >= text.size() || (text[p] != 'E' && text[p] != 'e')) return;
    std::size_t q = p + 1;
    const bool has_sign = q < text.size() && (text[q] == '+' || text[q] == '-');
    if (!has_sign && e == AsdfE::squeezed) return;
    const bool negative = has_sign && text[q] == '-';
    if (has_sign) ++q;
    if (q >= text.size() || !IsDigit(text[q])) return;
    int exponent = 0;
    for (; q < text.size() && IsDigit(text[q]); ++q)
        exponent = std::min(10 * exponent + SymbolOf(text[q]).digit, kLargest);
    digits.exponent += negative ? -exponent : exponent;
    p = q;
}

double TakeNumber(std::string_view text, std::size_t& p, AsdfE e, std::int8_t first_digit)
{
    constexpr int kMostPlaces = 100000;
    Digits digits;
    digits.mantissa = static_cast<std::uint64_t>(first_digit);
    while (p < text.size() && IsDigit(text[p])) digits.Add(SymbolOf(text[p++]).digit);
    if (p < text.size() && text[p] == '.') {
        for (++p; p < text.size() && IsDigit(text[p]); ++p) {
            if (digits.exponent < -kMostPlaces) continue;
            digits.Add(SymbolOf(text[p]).digit);
            --digits.exponent;
        }
    }
    TakeExponent(text, p, e, digits);
    return digits.Value();
}

std::uint64_t TakeCount(std::string_view text, std::size_t& p, std::int8_t first_digit)
{
    constexpr std::uint64_t kLargest = 1'000'000'000'000;
    std::uint64_t count = static_cast<std::uint64_t>(first_digit);
    for (; p < text.size() && IsDigit(text[p]); ++p)
        count = std::min(10 * count + static_cast<std::uint64_t>(SymbolOf(text[p]).digit), kLargest);
    return count;
}

bool StartsNumber(std::string_view text, std::size_t p)
{
    return p < text.size() && (IsDigit(text[p]) || text[p] == '.');
}

/// A class letter carries the first digit and the sign; "@" and "%" are 0.
AsdfItem TakeLetter(std::string_view text, std::size_t& p, AsdfE e, AsdfKind kind, std::int8_t digit)
{
    const double size = TakeNumber(text, p, e, static_cast<std::int8_t>(std::abs(digit)));
    return {kind, digit < 0 ? -size : size};
}

} // namespace

std::string_view AsdfTag(AsdfKind kind)
{
    switch (kind) {
    case AsdfKind::affn:
        return "AFFN";
    case AsdfKind::sqz:
    case AsdfKind::dif:
    case AsdfKind::dup:
        return "ASDF";
    case AsdfKind::error:
        return "ERROR";
    case AsdfKind::end:
    case AsdfKind::unknown:
        break;
    }
    return {};
}

AsdfItem Read_AsdfValue(std::string_view text, std::size_t& position, AsdfE e)
{
    std::size_t& p = position;
    while (p < text.size() && SymbolOf(text[p]).role == Role::separator) ++p;
    if (p >= text.size()) return {};
    const Symbol symbol = SymbolOf(text[p]);
    switch (symbol.role) {
    case Role::digit:
        return {AsdfKind::affn, TakeNumber(text, p, e, 0)};
    case Role::plus:
    case Role::minus: {
        if (!StartsNumber(text, p + 1)) return {AsdfKind::error};
        ++p;
        const double size = TakeNumber(text, p, e, 0);
        return {AsdfKind::affn, symbol.role == Role::minus ? -size : size};
    }
    case Role::point:
        if (p + 1 >= text.size() || !IsDigit(text[p + 1])) return {AsdfKind::error};
        return {AsdfKind::affn, TakeNumber(text, p, e, 0)};
    case Role::sqz:
        ++p;
        return TakeLetter(text, p, e, AsdfKind::sqz, symbol.digit);
    case Role::dif:
        ++p;
        return TakeLetter(text, p, e, AsdfKind::dif, symbol.digit);
    case Role::dup:
        ++p;
        return {AsdfKind::dup, 0, TakeCount(text, p, symbol.digit)};
    case Role::question:
        ++p;
        return {AsdfKind::unknown};
    case Role::dollar:
        p = text.size();
        return {};
    case Role::bad:
    case Role::separator:
        break;
    }
    return {AsdfKind::error};
}

std::string_view TakeLine(std::string_view& rest)
{
    std::size_t end = 0;
    while (end < rest.size() && rest[end] != '\n' && rest[end] != '\r') ++end;
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return line;
}

AsdfE FindAsdfE(std::string_view table)
{
    while (!table.empty()) {
        for (char c : TakeLine(table)) {
            if (c == '$') break;
            const Role role = SymbolOf(c).role;
            const bool is_letter = role == Role::sqz || role == Role::dif || role == Role::dup;
            if (is_letter && c != 'E' && c != 'e') return AsdfE::squeezed;
        }
    }
    return AsdfE::exponent;
}

namespace {

/// Where a line stood in the table: its X and the index of the value that X belongs to.
struct LineStart {
    double x;
    double index;
    double unit; ///< of the last digit that X was written with
};

/// Lines out of step with the others: some were lost, doubled or exchanged. Writers round X, or write
/// indices, so only the steps between lines are compared with the step over all of them.
std::size_t CountMisplaced(const std::vector<LineStart>& lines)
{
    if (lines.size() < 3) return 0;
    const LineStart &first = lines.front(), &last = lines.back();
    if (last.index <= first.index || last.x == first.x) return 0;
    const double slope = (last.x - first.x) / (last.index - first.index);
    std::size_t count = 0;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const double points = lines[i].index - lines[i - 1].index;
        const double off = std::fabs(lines[i].x - lines[i - 1].x - slope * points);
        const double allowed = 0.5 * std::fabs(slope) + lines[i].unit + 1e-3 * std::fabs(slope) * points;
        if (off > allowed) ++count;
    }
    return count;
}

double UnitOf(std::string_view number)
{
    const std::size_t point = number.find('.');
    if (point == number.npos) return 1;
    const std::size_t places = std::min<std::size_t>(number.size() - point - 1, 22);
    return 1 / kPowers[places];
}

class TableDecoder {
public:
    TableDecoder(AsdfE e, std::size_t limit, std::vector<double>& values) : e_(e), limit_(limit), values_(values) {}

    AsdfReport::Failure AddLine(std::string_view line)
    {
        using enum AsdfReport::Failure;
        std::size_t p = 0;
        const AsdfItem x = Read_AsdfValue(line, p, e_);
        if (x.kind == AsdfKind::end) return none;
        if (x.kind == AsdfKind::error) return bad_character;
        if (x.kind != AsdfKind::affn) return no_x;
        const bool starts_with_check = ends_in_difference_;
        if (lines_.size() <= limit_) // a line without values must not cost memory
            lines_.push_back({x.value, static_cast<double>(values_.size()) - (starts_with_check ? 1 : 0),
                              UnitOf(line.substr(0, p))});
        bool may_be_check = starts_with_check, has_item = false;
        for (;;) {
            const AsdfItem item = Read_AsdfValue(line, p, e_);
            switch (item.kind) {
            case AsdfKind::end:
                if (has_item) ends_in_difference_ = is_difference_;
                return none;
            case AsdfKind::affn:
            case AsdfKind::sqz:
                if (may_be_check)
                    Check(item.value);
                else
                    values_.push_back(item.value);
                current_ = item.value;
                is_difference_ = false;
                break;
            case AsdfKind::dif:
                difference_ = item.value;
                current_ += difference_;
                values_.push_back(current_);
                is_difference_ = true;
                break;
            case AsdfKind::dup:
                if (!has_item) return dup_first;
                Repeat(item.dup_count);
                break;
            case AsdfKind::unknown:
                ++report_.unknown;
                continue;
            case AsdfKind::error:
                return bad_character;
            }
            has_item = true;
            may_be_check = false;
            if (values_.size() > limit_) return too_many;
        }
    }

    AsdfReport Finish()
    {
        report_.misplaced = CountMisplaced(lines_);
        return report_;
    }

private:
    void Check(double value)
    {
        // Differences of decimal numbers gather rounding errors; those of integers are exact.
        if (std::fabs(value - current_) > 1e-6 * std::max(std::fabs(value), std::fabs(current_)) + 1e-9)
            ++report_.failed_checks;
    }

    void Repeat(std::uint64_t count)
    {
        const std::uint64_t room = limit_ + 1 - std::min(values_.size(), limit_ + 1);
        const std::uint64_t more = std::min(count - 1, room);
        if (!is_difference_ || difference_ == 0) {
            values_.insert(values_.end(), static_cast<std::size_t>(more), current_);
            return;
        }
        for (std::uint64_t i = 0; i < more; ++i) {
            current_ += difference_;
            values_.push_back(current_);
        }
    }

    AsdfE e_;
    std::size_t limit_;
    std::vector<double>& values_;
    std::vector<LineStart> lines_;
    AsdfReport report_;
    double current_ = 0;
    double difference_ = 0;
    bool is_difference_ = false;      ///< the last item that gave a value
    bool ends_in_difference_ = false; ///< so did the line before: the next one begins with a check
};

} // namespace

AsdfReport DecodeAsdfTable(std::string_view table, std::size_t limit, std::vector<double>& values)
{
    values.clear();
    // A value takes a character at least, but for repeats.
    values.reserve(std::min(limit, table.size()) + 1);
    TableDecoder decoder(FindAsdfE(table), limit, values);
    AsdfReport::Failure failure = AsdfReport::Failure::none;
    std::size_t line = 0;
    while (!table.empty() && failure == AsdfReport::Failure::none) {
        ++line;
        failure = decoder.AddLine(TakeLine(table));
    }
    AsdfReport report = decoder.Finish();
    report.failure = failure;
    if (failure != AsdfReport::Failure::none) report.line = line;
    return report;
}

// --- Encoders

namespace {

constexpr std::string_view kSqzPositive = "@ABCDEFGHI", kSqzNegative = "@abcdefghi";
constexpr std::string_view kDifPositive = "%JKLMNOPQR", kDifNegative = "%jklmnopqr";
constexpr std::string_view kDup = "-STUVWXYZs";
constexpr std::size_t kLineLength = 80;

} // namespace

void AppendAsdfValue(std::string& out, std::int64_t value, AsdfForm form)
{
    std::array<char, 24> buffer{};
    const bool negative = value < 0;
    const std::uint64_t size = negative ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value);
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), size).ptr;
    const auto digit = static_cast<std::size_t>(buffer[0] - '0');
    switch (form) {
    case AsdfForm::sqz:
        buffer[0] = (negative ? kSqzNegative : kSqzPositive)[digit];
        break;
    case AsdfForm::dif:
        buffer[0] = (negative ? kDifNegative : kDifPositive)[digit];
        break;
    case AsdfForm::dup:
        buffer[0] = kDup[digit];
        break;
    case AsdfForm::pac:
        out += negative ? '-' : '+';
        break;
    case AsdfForm::affn:
        out += ' ';
        if (negative) out += '-';
        break;
    }
    out.append(buffer.data(), end);
}

std::string Format_AsdfValue(std::int64_t value, AsdfForm form)
{
    std::string text;
    AppendAsdfValue(text, value, form);
    return text;
}

std::size_t Write_AsdfLine(std::span<const std::int64_t> values, std::size_t first, std::int64_t x, std::string& out)
{
    const std::size_t start = out.size();
    const auto fits = [&] { return out.size() - start <= kLineLength; };
    AppendAsdfValue(out, x, AsdfForm::affn);
    AppendAsdfValue(out, values[first], AsdfForm::sqz);
    std::size_t last = first; // index of the last value written
    while (last + 1 < values.size()) {
        const std::int64_t difference = values[last + 1] - values[last];
        std::size_t before = out.size();
        AppendAsdfValue(out, difference, AsdfForm::dif);
        if (!fits()) {
            out.resize(before);
            break;
        }
        std::size_t run = 1;
        while (last + run + 1 < values.size() && values[last + run + 1] - values[last + run] == difference) ++run;
        ++last;
        if (run == 1) continue;
        before = out.size();
        AppendAsdfValue(out, static_cast<std::int64_t>(run), AsdfForm::dup);
        if (fits())
            last += run - 1;
        else
            out.resize(before);
    }
    out += '\n';
    return last;
}

} // namespace nmr
